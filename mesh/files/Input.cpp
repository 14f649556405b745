#include "files/Input.h"

#include "base/Host.h"
#include "base/MachineMemory.h"
#include "files/FileErrors.h"
#include "system/System.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace TessaryMesh {
namespace {

constexpr std::size_t kBlock = std::size_t(1) << 20;

using Code = FileError::Code;

[[noreturn]] void failToOpen(const std::string& path, int error)
{
    if (error == ENOENT)
        failToRead(Code::NotFound, path, "there is no such file; check the name");
    failToRead(Code::Unreadable, path, std::string("cannot be opened: ") + std::strerror(error));
}

[[noreturn]] void failBySystem(const std::string& path, int error)
{
    failToRead(Code::Unreadable, path, std::string("cannot be read: ") + std::strerror(error));
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
            failBySystem(path, errno);
    }
}

[[noreturn]] void failByLimit(const std::string& path, double most)
{
    failToRead(Code::OverLimit, path,
               "has more than " + memoryText(most) + ", the limit of what is read; allow more");
}

// What of a stream fits into memory together with the mesh that it becomes.
std::uint64_t mostOfStream(const ReadLimits& limits)
{
    return limits.bytes > 0 ? limits.bytes : machineMemory() / 4;
}

Array<char> readToEnd(int descriptor, const std::string& path, std::uint64_t most,
                      const Input::HeadCheck& check)
{
    // Not a byte is waited for beyond the one that passes the limit: a pipe may hold nothing more.
    const auto upToLimit = [most](std::size_t count) {
        return static_cast<std::size_t>(std::min<std::uint64_t>(count, most + 1));
    };
    Array<char> bytes(upToLimit(kBlock));
    std::size_t size = 0;
    bool isEnd = false;
    const auto readUpTo = [&](std::size_t end) {
        while (!isEnd && size < end) {
            const std::size_t room = std::min(end - size, 16 * kBlock);
            const std::size_t got = readSome(descriptor, bytes.data() + size, room, path);
            isEnd = got == 0;
            size += got;
        }
    };
    readUpTo(upToLimit(Input::kHead));
    if (check && size > 0)
        check({bytes.data(), std::min(size, Input::kHead)}, isEnd ? size : 0);
    for (readUpTo(bytes.size()); !isEnd && size <= most; readUpTo(bytes.size()))
        bytes.resize(upToLimit(2 * size));
    if (size > most)
        failByLimit(path, static_cast<double>(most));
    bytes.resize(size);
    return bytes;
}

}  // namespace

/// An open file.
class Input::File {
public:
    explicit File(const std::string& path)
        : m_path(path),
          m_descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_descriptor < 0)
            failToOpen(path, errno);
    }
    ~File()
    {
        if (m_path != "-")
            ::close(m_descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int descriptor() const { return m_descriptor; }
    const std::string& path() const { return m_path; }

    // Of a regular file that is read from its beginning; 0 where the system does not tell.
    std::size_t size() const
    {
        struct stat status = {};
        if (::fstat(m_descriptor, &status) != 0)
            return 0;
        if (S_ISDIR(status.st_mode))
            failToRead(Code::IsFolder, m_path, "is a folder; name a mesh file");
        const bool isWhole =
            S_ISREG(status.st_mode) && (m_path != "-" || ::lseek(m_descriptor, 0, SEEK_CUR) == 0);
        return isWhole ? static_cast<std::size_t>(status.st_size) : 0;
    }

    void read(std::size_t begin, char* to, std::size_t count) const
    {
        while (count > 0) {
            const ssize_t got = ::pread(m_descriptor, to, count, static_cast<off_t>(begin));
            if (got < 0 && errno != EINTR)
                failBySystem(m_path, errno);
            if (got == 0)
                failToRead(Code::Unreadable, m_path,
                           "became shorter while it was read; read it again");
            const std::size_t step = got < 0 ? 0 : static_cast<std::size_t>(got);
            begin += step;
            to += step;
            count -= step;
        }
    }

private:
    std::string m_path;
    int m_descriptor;
};

Input::Input(const char* path, const ReadLimits& limits, const HeadCheck& check)
    : m_file(std::make_shared<File>(path))
{
    m_size = m_file->size();
    if (limits.bytes > 0 && m_size > limits.bytes)
        failByLimit(path, static_cast<double>(limits.bytes));
    InputBuffer buffer;
    if (m_size > 0 && check)
        check(head(kHead, buffer), m_size);
    if (m_size > 0)
        return;
    const auto bytes = std::make_shared<Array<char>>(
        readToEnd(m_file->descriptor(), path, mostOfStream(limits), check));
    m_file = nullptr;
    m_memory = {bytes->data(), bytes->size()};
    m_owned = bytes;
    m_size = m_memory.size();
    if (m_size == 0)
        failToRead(Code::Empty, path, "is empty; a mesh file was expected");
}

std::string_view Input::part(std::size_t begin, std::size_t end, InputBuffer& buffer) const
{
    if (!m_file)
        return m_memory.substr(begin, end - begin);
    char* const bytes = buffer.reserve(end - begin);
    m_file->read(begin, bytes, end - begin);
    return {bytes, end - begin};
}

void Input::read(std::size_t begin, std::size_t end, char* to) const
{
    if (m_file)
        m_file->read(begin, to, end - begin);
    else
        std::memcpy(to, m_memory.data() + begin, end - begin);
}

}  // namespace TessaryMesh
