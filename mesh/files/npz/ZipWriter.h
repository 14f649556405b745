#pragma once

#include <TessaryMesh/Files.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// Writes a zip archive from its beginning to its end, so that it can go into a pipe, as the libraries for
/// archives cannot: they come back to each file's head. Sizes beyond 4 GB are written as zip64.
///
/// Everything throws FileError where the system refuses, and Cancelled.
class ZipWriter {
public:
    enum class Packing { Stored, Deflated };

    ZipWriter(OutputFile& output, Packing packing) : m_output(output), m_packing(packing) {}

    /// A file of these two parts, one behind the other.
    void add(const std::string& name, std::string_view head, const void* bytes, std::size_t count);

    /// Writes the archive's list of contents, without which it is none.
    void finish();

private:
    struct File {
        std::uint32_t checksum;
        std::uint64_t packedSize, size, begin;
    };

    void addToContents(const std::string& name, const File& file);
    void writeStored(std::string_view head, const void* bytes, std::size_t count);
    std::uint64_t writeDeflated(std::string_view head, const void* bytes, std::size_t count);
    void write(std::string_view bytes);

    OutputFile& m_output;
    Packing m_packing;
    std::string m_contents;  // the list, so far
    std::uint64_t m_size = 0;
    std::uint64_t m_count = 0;
};

}  // namespace TessaryMesh
