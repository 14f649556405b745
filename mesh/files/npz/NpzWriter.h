#pragma once

#include "base/Host.h"
#include "base/Scalars.h"
#include "files/ArrayShape.h"
#include <TessaryMesh/Files.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace TessaryMesh {

/// Writes arrays under names as one .npz file.
///
/// Arrays go out as they are added; finish() writes the archive's list of contents, without which it
/// is none. Throws FileError where the system refuses, and where the file would need more than 4 GB.
class NpzWriter {
public:
    explicit NpzWriter(OutputFile& output) : m_output(output) {}

    /// Numbers or bool in C order.
    template <class T>
    void add(const std::string& name, const Shape& shape, const Array<T>& values)
    {
        using S = typename Scalars<T>::Type;
        constexpr char kKind = std::is_same_v<S, bool>       ? 'b'
                               : std::is_floating_point_v<S> ? 'f'
                               : std::is_signed_v<S>         ? 'i'
                                                             : 'u';
        const std::string type = (sizeof(S) == 1 ? "|" : "<") + (kKind + std::to_string(sizeof(S)));
        add(name, type, shape, values.data(), sizeof(T) * values.size());
    }

    /// Texts of so many characters at most.
    static constexpr std::size_t kLongestText = 256;
    static std::size_t longestOf(const Array<String>& texts);
    void add(const std::string& name, const Shape& shape, const Array<String>& texts);

    void finish();

private:
    void add(const std::string& name, const std::string& type, const Shape& shape,
             const void* bytes, std::size_t count);
    void write(const std::string& bytes);

    OutputFile& m_output;
    std::string m_contents;  // the archive's list, so far
    std::uint64_t m_size = 0;
    unsigned m_count = 0;
};

}  // namespace TessaryMesh
