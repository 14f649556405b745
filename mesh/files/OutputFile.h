#pragma once

#include <string>
#include <string_view>

namespace TessaryMesh {

/// Writes all bytes to a descriptor; false, with errno set, where the system refuses.
bool writeAll(int descriptor, std::string_view bytes);

/// A file that appears under its name only when it is complete.
///
/// Bytes go to a temporary name in the same folder; commit() renames it into place. Without
/// commit() the temporary is removed and an existing file stays as it was. A file that is replaced
/// hands on its permissions, and a symbolic link stays one: what it points to is replaced. "-" is
/// standard output; that, devices and pipes are written straight through. Every operation throws
/// FileError where the system refuses.
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
    void openTemporary(unsigned permissions);
    void close();

    std::string m_path;
    std::string m_target;     // what the temporary becomes
    std::string m_temporary;  // empty where bytes go straight through, and after commit()
    bool m_overwrite;
    int m_descriptor = -1;
};

}  // namespace TessaryMesh
