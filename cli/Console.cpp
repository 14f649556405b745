#include "Console.h"

#include "system/System.h"

#include <cerrno>

namespace Cli {
namespace {

// A stream that somebody made non-blocking refuses what its reader has no room for yet.
void waitForRoom(int descriptor)
{
    pollfd wanted = {descriptor, POLLOUT, 0};
    poll(&wanted, 1, -1);
}

}  // namespace

void secureStandardStreams()
{
    System::secureStandardStreams();
    System::ignoreWriteSignals();
}

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

}  // namespace Cli
