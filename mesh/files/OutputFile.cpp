#include <TessaryMesh/Files.h>

#include "files/Deflate.h"
#include "files/FileErrors.h"
#include "files/UnfinishedFiles.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace TessaryMesh {
namespace {

constexpr int kTemporaryNames = 1000;

using Code = FileError::Code;

[[noreturn]] void failBySystem(const std::string& path, const std::string& what, int error)
{
    failToWrite(Code::Unwritable, path, what + ": " + std::strerror(error));
}

[[noreturn]] void failToReplace(const std::string& path)
{
    failToWrite(Code::Exists, path, "exists already; name another file");
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash + 1);
}

// Where a path leads in the end; the path itself for a file that does not exist yet.
std::string resolved(const std::string& path)
{
    const std::unique_ptr<char, decltype(&::free)> real(::realpath(path.c_str(), nullptr), &::free);
    return real ? std::string(real.get()) : path;
}

[[noreturn]] void failToCreate(const std::string& path, int error)
{
    struct stat folder = {};
    if (error == ENOENT && ::stat(folderOf(path).c_str(), &folder) != 0)
        failToWrite(Code::NoFolder, path, "its folder does not exist; create it first");
    failBySystem(path, "cannot be created", error);
}

// A hard link is never made over an existing file, so nobody's file of that name is lost, however
// late it appeared.
bool linkIntoPlace(const std::string& temporary, const std::string& target, const std::string& path)
{
    if (::link(temporary.c_str(), target.c_str()) == 0) {
        ::unlink(temporary.c_str());
        return true;
    }
    if (errno == EEXIST)
        failToReplace(path);
    return false;  // a file system without hard links
}

// False, with errno set, where the system refuses.
bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

OutputFile::OutputFile(std::string path, bool overwrite)
    : m_path(std::move(path)), m_overwrite(overwrite)
{
    if (endsWithGz(m_path))
        m_packer = std::make_unique<Deflater>(Deflater::Wrapping::Gzip,
                                              [this](std::string_view packed) { put(packed); });
    if (m_path == "-") {
        m_descriptor = STDOUT_FILENO;
        return;
    }
    struct stat existing = {};
    const bool exists = ::stat(m_path.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode))
        failToWrite(Code::IsFolder, m_path, "is a folder; name a file in it");
    if (exists && !S_ISREG(existing.st_mode)) {
        m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_descriptor < 0)
            failBySystem(m_path, "cannot be opened for writing", errno);
        return;
    }
    if (exists && !overwrite)
        failToReplace(m_path);
    m_target = resolved(m_path);
    openTemporary(0666);
    if (exists)
        ::fchmod(m_descriptor, existing.st_mode & 07777);
}

void OutputFile::openTemporary(unsigned permissions)
{
    for (int i = 0; i < kTemporaryNames; ++i) {
        std::string name =
            m_target + ".part-" + std::to_string(::getpid()) + "-" + std::to_string(i);
        const auto create = [&] {
            m_descriptor =
                ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions);
            return m_descriptor >= 0;
        };
        if (UnfinishedFiles::add(name, create)) {
            m_temporary = std::move(name);  // cannot fail, which would leave the file behind
            return;
        }
        if (errno != EEXIST)
            failToCreate(m_path, errno);
    }
    failToWrite(Code::Unwritable, m_path,
                "too many unfinished files of that name; remove " + m_target + ".part-*");
}

OutputFile::~OutputFile()
{
    if (m_descriptor >= 0 && m_path != "-")
        ::close(m_descriptor);
    if (!m_temporary.empty())
        UnfinishedFiles::remove(m_temporary, [this] {
            ::unlink(m_temporary.c_str());
            return true;
        });
}

void OutputFile::write(const void* bytes, std::size_t count)
{
    const std::string_view view(static_cast<const char*>(bytes), count);
    if (m_packer)
        m_packer->write(view);
    else
        put(view);
}

void OutputFile::put(std::string_view bytes)
{
    if (!writeAll(m_descriptor, bytes))
        failBySystem(m_path, "cannot be written", errno);
}

void OutputFile::commit()
{
    if (m_packer)
        m_packer->finish();
    m_packer.reset();
    close();
    if (m_temporary.empty())
        return;
    const auto moveIntoPlace = [this] {
        return (!m_overwrite && linkIntoPlace(m_temporary, m_target, m_path)) ||
               std::rename(m_temporary.c_str(), m_target.c_str()) == 0;
    };
    if (!UnfinishedFiles::remove(m_temporary, moveIntoPlace))
        failBySystem(m_path, "cannot be renamed into place", errno);
    m_temporary.clear();
}

// Some file systems tell only now that there was no room.
void OutputFile::close()
{
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    if (descriptor >= 0 && m_path != "-" && ::close(descriptor) != 0)
        failBySystem(m_path, "cannot be written", errno);
}

}  // namespace TessaryMesh
