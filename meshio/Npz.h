#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace MeshIo {

class OutputFile;

/// Writes arrays under names as one .npz file: an uncompressed zip archive with a .npy file for each.
///
/// Arrays go out as they are added; finish() writes the archive's list of contents, without which it
/// is none. Throws FileError where the system refuses, and where the file would need more than 4 GB.
class NpzWriter {
public:
    explicit NpzWriter(OutputFile& output) : m_output(output) {}

    /// An array in C order. An empty shape is a single number.
    void add(const std::string& name, const std::vector<std::size_t>& shape,
             const std::int32_t* values);
    void add(const std::string& name, const std::vector<std::size_t>& shape,
             const std::uint32_t* values);
    void add(const std::string& name, const std::vector<std::size_t>& shape, const float* values);
    void add(const std::string& name, const std::vector<std::size_t>& shape, const double* values);

    void finish();

private:
    void addBytes(const std::string& name, const std::string& header, const void* bytes,
                  std::size_t count);
    void write(const std::string& bytes);

    OutputFile& m_output;
    std::string m_contents;  // the archive's list, so far
    std::uint64_t m_size = 0;
    unsigned m_count = 0;
};

}  // namespace MeshIo
