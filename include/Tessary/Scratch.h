#pragma once

#include <Tessary/Api.h>

#include <cstddef>

/// @file
/// Working memory without initialisation.

namespace Tessary {

/// Working memory that is refilled on every use: elements are never initialised, and a change of
/// size drops the contents, so that it costs one allocation and no copy.
///
/// There are `Scratch<float>` and `Scratch<double>`. data() is null exactly where size() is 0. A request
/// that no memory can hold throws std::bad_array_new_length, one that finds none std::bad_alloc.
template <class T>
class Scratch {
public:
    Scratch() noexcept;                  ///< an empty buffer
    explicit Scratch(std::size_t size);  ///< a buffer of so many elements
    Scratch(Scratch&& other) noexcept;   ///< leaves `other` empty
    ~Scratch();                          ///< gives the memory back

    /// Takes over another buffer, `a = std::move(b)`; the old one goes. Buffers are not copied.
    Scratch& operator=(Scratch other) noexcept;

    T* data() noexcept;                 ///< the first element
    const T* data() const noexcept;     ///< the first element
    std::size_t size() const noexcept;  ///< how many elements there are

    /// A new buffer, also where the size stays the same. The old one goes first: where memory runs
    /// out, an empty buffer is left.
    void resize(std::size_t size);

    /// The same for a larger size; otherwise the buffer and its contents stay.
    void grow(std::size_t size);

private:
    std::size_t m_size;
    T* m_data;
};

extern template class TESSARY_API Scratch<float>;
extern template class TESSARY_API Scratch<double>;

}  // namespace Tessary
