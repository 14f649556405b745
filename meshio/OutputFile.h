#pragma once

#include <string>
#include <string_view>

namespace MeshIo {

/// A file that appears under its name only when it is complete.
///
/// Bytes go to a temporary name in the same folder; commit() renames it into place. Without commit()
/// the temporary is removed and an existing file stays as it was. "-" is standard output, written
/// straight through. Every operation throws FileError where the system refuses.
class OutputFile {
public:
    /// With `overwrite` false an existing file is an error that says how to replace it.
    OutputFile(std::string path, bool overwrite);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& path() const { return m_path; }

    void write(const void* bytes, std::size_t count);
    void write(std::string_view text) { write(text.data(), text.size()); }

    /// Flushes and renames into place.
    void commit();

private:
    std::string m_path;
    std::string m_temporary;  // empty for standard output and after commit()
    int m_descriptor = -1;
};

}  // namespace MeshIo
