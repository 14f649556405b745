#include "files/ReadFile.h"

#include "base/Host.h"
#include "files/FileErrors.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace TessaryMesh {
namespace {

constexpr std::size_t kBlock = std::size_t(1) << 20;

using Code = FileError::Code;

class Descriptor {
public:
    explicit Descriptor(const std::string& path)
        : m_owned(path != "-"),
          m_descriptor(m_owned ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO)
    {
        if (m_descriptor >= 0)
            return;
        if (errno == ENOENT)
            failToRead(Code::NotFound, path, "there is no such file; check the name");
        failToRead(Code::Unreadable, path,
                   std::string("cannot be opened: ") + std::strerror(errno));
    }
    ~Descriptor()
    {
        if (m_owned)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }

private:
    bool m_owned;
    int m_descriptor;
};

// The size that the system tells, as a first guess: a pipe has none, and a file may still grow.
std::size_t expectedSize(int descriptor, const std::string& path)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return 0;
    if (S_ISDIR(status.st_mode))
        failToRead(Code::IsFolder, path, "is a folder; name a mesh file");
    return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
}

// A pipe that stays silent must not keep a cancelled job waiting.
void waitForInput(int descriptor)
{
    pollfd wanted = {descriptor, POLLIN, 0};
    int ready = 0;
    do {
        throwIfCancelled();
        ready = ::poll(&wanted, 1, 100);
    } while (ready == 0 || (ready < 0 && errno == EINTR));
}

std::size_t readSome(int descriptor, char* to, std::size_t count, const std::string& path)
{
    for (;;) {
        waitForInput(descriptor);
        const ssize_t got = ::read(descriptor, to, count);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno != EINTR && errno != EAGAIN)
            failToRead(Code::Unreadable, path,
                       std::string("cannot be read: ") + std::strerror(errno));
    }
}

}  // namespace

Array<char> readFile(const std::string& path)
{
    const Descriptor file(path);
    Array<char> bytes;
    // One byte more, so that the end is seen without growing.
    bytes.resize(std::max(expectedSize(file.get(), path) + 1, kBlock));
    std::size_t size = 0;
    for (;;) {
        if (size == bytes.size())
            bytes.resize(2 * size);
        const std::size_t room = std::min(bytes.size() - size, 16 * kBlock);
        const std::size_t got = readSome(file.get(), bytes.data() + size, room, path);
        if (got == 0)
            break;
        size += got;
    }
    if (size == 0)
        failToRead(Code::Empty, path, "is empty; a mesh file was expected");
    bytes.resize(size);
    return bytes;
}

}  // namespace TessaryMesh
