#pragma once

#include <Pelon/Api.h>

#include <cstddef>
#include <cstdint>

/// @file
/// Where the storage of arrays comes from.

namespace Pelon {

/// The host's index type.
using uint = std::uint32_t;

namespace Internal {

/// What the runtime knows of an element type, and the one place where array storage is obtained.
///
/// Blocks of 2 MiB and more are mapped directly: they ask for huge pages, and their pages are zeroed
/// by the system when they are first touched, by whichever thread touches them. A large array that a
/// parallel loop fills is therefore written once. They start within 4 KiB after a 2 MiB boundary, at
/// least 64-byte aligned, each in another place than the one before.
class UntypedTypeRep {
public:
    /// Of a type of that size and alignment.
    constexpr UntypedTypeRep(std::size_t size, std::size_t alignment) noexcept
        : m_size(size), m_alignment(alignment)
    {}

    constexpr std::size_t size() const noexcept { return m_size; }            ///< of an element
    constexpr std::size_t alignment() const noexcept { return m_alignment; }  ///< of an element

    /// Storage for `count` elements, every byte zero; null for 0 elements.
    ///
    /// @throws std::bad_array_new_length  where the byte count overflows
    /// @throws std::bad_alloc             where there is no memory
    PELON_API void* allocate(std::size_t count) const;

    /// Releases what allocate(count) returned; `count` must be the same. Leaves `pointer` alone where
    /// it is 0.
    PELON_API void deallocate(void* pointer, std::size_t count) const noexcept;

private:
    std::size_t m_size;
    std::size_t m_alignment;
};

/// That of a type.
template <class T>
inline constexpr UntypedTypeRep typeRep{sizeof(T), alignof(T)};

}  // namespace Internal
}  // namespace Pelon
