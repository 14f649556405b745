#include <TessaryMesh/Files.h>

#include "files/Deflate.h"
#include "files/FileErrors.h"
#include "files/TemporaryFile.h"
#include "system/System.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace TessaryMesh {
namespace {

using Code = FileError::Code;

[[noreturn]] void failBySystem(const std::string& path, const std::string& what, int error)
{
    failToWrite(Code::Unwritable, path, what + ": " + std::strerror(error));
}

[[noreturn]] void failToReplace(const std::string& path)
{
    failToWrite(Code::Exists, path, "exists already; name another file");
}

// Where a path leads in the end, through links to files that do not exist yet, too.
std::string resolved(std::string path)
{
    constexpr int kMostLinks = 40;  // as the system has it
    char link[PATH_MAX];
    for (int i = 0; i < kMostLinks; ++i) {
        const std::unique_ptr<char, decltype(&::free)> real(::realpath(path.c_str(), nullptr),
                                                            &::free);
        if (real)
            return real.get();
        if (errno == ELOOP)
            failBySystem(path, "cannot be created", ELOOP);
        const ssize_t length = ::readlink(path.c_str(), link, sizeof link);
        if (length <= 0)
            break;
        const std::string next(link, static_cast<std::size_t>(length));
        path = next[0] == '/' ? next : folderOf(path).append("/").append(next);
    }
    return path;
}

[[noreturn]] void failToCreate(const std::string& path, const std::string& target, int error)
{
    struct stat folder = {};
    if (error == EEXIST)
        failToWrite(Code::Unwritable, path,
                    "too many unfinished files of that name; remove " + target + ".part-*");
    if (error == ENOENT && ::stat(folderOf(target).c_str(), &folder) != 0)
        failToWrite(Code::NoFolder, path, "its folder does not exist; create it first");
    failBySystem(path, "cannot be created", error);
}

// A stream that somebody made non-blocking refuses what its reader has no room for yet.
void waitForRoom(int descriptor)
{
    pollfd wanted = {descriptor, POLLOUT, 0};
    do
        throwIfCancelled();
    while (::poll(&wanted, 1, 100) == 0);
}

// False, with errno set, where the system refuses.
bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EAGAIN)
            waitForRoom(descriptor);
        else if (errno != EINTR)
            return false;
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
    openTemporary(exists ? existing.st_mode & 07777 : 0666u, exists);
}

OutputFile::~OutputFile()
{
    if (!m_temporary && m_descriptor >= 0 && m_path != "-")
        ::close(m_descriptor);
}

// With the permissions of the file that it replaces from the beginning: nobody else's are wider.
void OutputFile::openTemporary(unsigned permissions, bool replaces)
{
    const std::string target = resolved(m_path);
    m_temporary = std::make_unique<TemporaryFile>(target, permissions & 0777);
    m_descriptor = m_temporary->descriptor();
    if (m_descriptor < 0)
        failToCreate(m_path, target, errno);
    if (replaces)
        ::fchmod(m_descriptor, permissions);
    m_folder = folderOf(target);
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
    if (!m_temporary)
        return close();
    if (!m_temporary->flush(m_syncs))
        failBySystem(m_path, "cannot be written", errno);
    if (!m_temporary->moveIntoPlace(m_overwrite)) {
        if (errno == EEXIST && !m_overwrite)
            failToReplace(m_path);
        failBySystem(m_path, "cannot be renamed into place", errno);
    }
    m_descriptor = -1;
    m_temporary.reset();
    if (m_syncs && !syncFolder(m_folder))
        failBySystem(m_path, "is written, but its folder cannot be", errno);
}

void OutputFile::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    if (descriptor >= 0 && m_path != "-" && ::close(descriptor) != 0)
        failBySystem(m_path, "cannot be written", errno);
}

}  // namespace TessaryMesh
