#include "files/TemporaryFile.h"

#include "files/UnfinishedFiles.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace TessaryMesh {
namespace {

constexpr int kTemporaryNames = 1000;
constexpr std::size_t kLongestStem = 100;  // bytes; file systems take names of 143 or 255

// The target's name in front says whose rest a temporary file is.
std::string stemOf(const std::string& target)
{
    const std::size_t begin = target.rfind('/') + 1;
    std::size_t end = std::min(target.size(), begin + kLongestStem);
    while (end < target.size() && (target[end] & 0xC0) == 0x80)  // inside a character
        --end;
    return target.substr(0, end);
}

// The name by which an open file without one can be linked to.
std::string openName(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// -1 where the file system makes no such files, or where they could not be given a name later.
int openWithoutName(const std::string& folder, unsigned permissions)
{
#ifdef O_TMPFILE
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, permissions);
    if (descriptor < 0 || ::access(openName(descriptor).c_str(), F_OK) == 0)
        return descriptor;
    ::close(descriptor);
#else
    static_cast<void>(folder), static_cast<void>(permissions);
#endif
    return -1;
}

// Pipes, network and other file systems have nothing to wait for, and say so.
bool waitForDisk(int descriptor)
{
    int result = 0;
    do
        result = ::fsync(descriptor);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

}  // namespace

TemporaryFile::TemporaryFile(std::string target, unsigned permissions, Name name)
    : m_target(std::move(target))
{
    if (name == Name::None)
        m_descriptor = openWithoutName(folderOf(m_target), permissions);
    if (m_descriptor < 0)
        openWithName(permissions);
}

TemporaryFile::~TemporaryFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (!m_name.empty())
        UnfinishedFiles::remove(m_name, [this] {
            ::unlink(m_name.c_str());
            return true;
        });
}

// Some file systems tell only at the end that there was no room, and the file must stay open until it
// has a name: closing a duplicate asks them.
bool TemporaryFile::flush(bool sync) const
{
    const int duplicate = ::dup(m_descriptor);
    return (!sync || waitForDisk(m_descriptor)) && (duplicate < 0 || ::close(duplicate) == 0);
}

bool TemporaryFile::moveIntoPlace(bool overwrite)
{
    const auto link = [this](const std::string& name) { return linkTo(name); };
    if (m_name.empty()) {
        if (UnfinishedFiles::step([&] { return link(m_target); }))
            return true;
        if (errno != EEXIST || !overwrite || !giveName(link))
            return false;
    }
    const auto move = [this, overwrite] {
        if (!overwrite && ::link(m_name.c_str(), m_target.c_str()) == 0)
            return ::unlink(m_name.c_str()) == 0;
        const bool isTaken = !overwrite && errno == EEXIST;  // else it cannot make hard links
        return !isTaken && System::replaceFile(m_name.c_str(), m_target.c_str());
    };
    if (!UnfinishedFiles::remove(m_name, move))
        return false;
    m_name.clear();
    return true;
}

template <class Create>
bool TemporaryFile::giveName(const Create& create)
{
    const std::string stem = stemOf(m_target) + ".part-" + std::to_string(::getpid()) + "-";
    for (int i = 0; i < kTemporaryNames; ++i) {
        std::string name = stem + std::to_string(i);
        if (UnfinishedFiles::add(name, [&] { return create(name); })) {
            m_name = std::move(name);  // cannot fail, which would leave the file behind
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

void TemporaryFile::openWithName(unsigned permissions)
{
    giveName([&](const std::string& name) {
        m_descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions);
        return m_descriptor >= 0;
    });
}

bool TemporaryFile::linkTo(const std::string& name) const
{
    return ::linkat(AT_FDCWD, openName(m_descriptor).c_str(), AT_FDCWD, name.c_str(),
                    AT_SYMLINK_FOLLOW) == 0;
}

std::string folderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash + 1);
}

bool syncFolder(const std::string& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return true;  // one may write into folders that one may not read
    const bool done = waitForDisk(descriptor);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return done;
}

}  // namespace TessaryMesh
