#pragma once

#include <string>

namespace TessaryMesh {

/// A file in the folder of the one that it is to become. It has no name where the file system can do
/// without, so that nothing stays of it however the program ends; elsewhere it is "NAME.part-" and numbers,
/// which UnfinishedFiles knows. Removed with this unless it was moved into place.
class TemporaryFile {
public:
    /// Opens it for writing; as for open(), the system's mask narrows the permissions. descriptor() is -1,
    /// and errno says why, where that fails: EEXIST stands for too many names that are taken.
    enum class Name { None, Always };
    TemporaryFile(std::string target, unsigned permissions, Name name = Name::None);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int descriptor() const { return m_descriptor; }

    /// Whatever the system has kept back so far, an error or with `sync` the bytes themselves, comes out.
    /// False with errno.
    bool flush(bool sync) const;

    /// Becomes the target. A file of that name is replaced at once or, without `overwrite`, left alone
    /// however late it appeared: that is EEXIST. False with errno.
    bool moveIntoPlace(bool overwrite);

private:
    template <class Create>
    bool giveName(const Create& create);
    void openWithName(unsigned permissions);
    bool linkTo(const std::string& name) const;

    std::string m_target;
    std::string m_name;  // empty while it has none
    int m_descriptor = -1;
};

/// The folder of a path: all up to the last slash, or ".".
std::string folderOf(const std::string& path);

/// Waits until the names in a folder are on the disk. False with errno.
bool syncFolder(const std::string& folder);

}  // namespace TessaryMesh
