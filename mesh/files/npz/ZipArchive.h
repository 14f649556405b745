#pragma once

#include "files/Input.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TessaryMesh {

/// The files of a zip archive, stored or deflated. Everything throws FileError where the archive is broken.
class ZipArchive {
public:
    /// Reads the list of contents. Both outlive the archive.
    ZipArchive(const Input& input, const std::string& path);
    ~ZipArchive();

    struct File {
        std::string name;
        std::uint64_t size;  ///< unpacked: no more than the packed bytes can become
        std::uint64_t packedSize;
        std::uint64_t place[2];  ///< in the list of contents
    };
    const std::vector<File>& files() const { return m_files; }

    /// Whether any file is packed smaller than it is.
    bool isPacked() const;

    /// Begins to read a file, another one's reading being over.
    void open(const File& file);

    /// The next bytes of the file; throws Cancelled, too.
    void read(void* to, std::size_t count);

    /// Ends it: compares the checksum where all of the file was read.
    void close();

private:
    class Reader;

    [[noreturn]] void fail(const std::string& what) const;
    void listFiles();

    const std::string& m_path;
    std::unique_ptr<Reader> m_reader;
    std::vector<File> m_files;
    const File* m_open = nullptr;
};

}  // namespace TessaryMesh
