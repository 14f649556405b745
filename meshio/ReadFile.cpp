#include <meshio/ReadFile.h>

#include <KOR/ExceptionMessage.h>
#include <Pelon/Job.h>

#include <meshio/MeshFile.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace MeshIo {
namespace {

constexpr std::size_t kBlock = std::size_t(1) << 20;
constexpr std::size_t kLongestQuote = 40;

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
    throw FileError(inputName(path) + ": " + what);
}

class Descriptor {
public:
    explicit Descriptor(const std::string& path)
        : m_owned(path != "-"),
          m_descriptor(m_owned ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO)
    {
        if (m_descriptor >= 0)
            return;
        if (errno == ENOENT)
            fail(path, "there is no such file; check the name");
        fail(path, std::string("cannot be opened: ") + std::strerror(errno));
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
        fail(path, "is a folder; name a mesh file");
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
            fail(path, std::string("cannot be read: ") + std::strerror(errno));
    }
}

bool isContinuation(std::string_view text, std::size_t i)
{
    return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
}

// The length of the character at `i`, 0 where there is none: no overlong forms, no surrogates,
// nothing beyond U+10FFFF.
std::size_t utf8Length(std::string_view text, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned lead = byte(i);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    for (std::size_t k = 1; k < length; ++k)
        if (!isContinuation(text, i + k))
            return 0;
    const unsigned second = byte(i + 1);
    const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return wrong ? 0 : length;
}

}  // namespace

Pelon::Array<char> readFile(const std::string& path)
{
    const Descriptor file(path);
    Pelon::Array<char> bytes;
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
        fail(path, "is empty; a mesh file was expected");
    bytes.resize(size);
    return bytes;
}

std::string inputName(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

void throwIfCancelled()
{
    if (Pelon::isJobCancelled())
        throw std::runtime_error(KOR::exceptionMessage.c_str());
}

bool isUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8Length(text, i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    std::size_t i = 0;
    while (i < text.size() && out.size() <= kLongestQuote) {
        const std::size_t length = utf8Length(text, i);
        const bool shown =
            length > 0 && static_cast<unsigned char>(text[i]) >= 0x20 && text[i] != 0x7F;
        out += shown ? text.substr(i, length) : std::string_view("?");
        i += std::max<std::size_t>(length, 1);
    }
    return out + (i < text.size() ? "...\"" : "\"");
}

}  // namespace MeshIo
