#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace TessaryMesh {

class OutputFile;

/// Writes arrays under names as one .npz file: an uncompressed zip archive with a .npy file for each.
///
/// Arrays go out as they are added; finish() writes the archive's list of contents, without which it
/// is none. Throws FileError where the system refuses, and where the file would need more than 4 GB.
class NpzWriter {
public:
    explicit NpzWriter(OutputFile& output) : m_output(output) {}

    /// An array of numbers or bool in C order. An empty shape is a single value.
    template <class T>
    void add(const std::string& name, const std::vector<std::size_t>& shape, const T* values)
    {
        static_assert(std::is_arithmetic_v<T>);
        constexpr char kKind = std::is_same_v<T, bool>       ? 'b'
                               : std::is_floating_point_v<T> ? 'f'
                               : std::is_signed_v<T>         ? 'i'
                                                             : 'u';
        add(name, shape, kKind, sizeof(T), values);
    }

    /// A list of texts of `width` characters each, filled up with zeros.
    void addTexts(const std::string& name, std::size_t width, const std::vector<char32_t>& texts);

    void finish();

private:
    void add(const std::string& name, const std::vector<std::size_t>& shape, char kind,
             std::size_t itemBytes, const void* values);
    void addBytes(const std::string& name, const std::string& header, const void* bytes,
                  std::size_t count);
    void write(const std::string& bytes);

    OutputFile& m_output;
    std::string m_contents;  // the archive's list, so far
    std::uint64_t m_size = 0;
    unsigned m_count = 0;
};

}  // namespace TessaryMesh
