#include "Console.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

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
    // open() takes the lowest free descriptor, which is the one just found closed.
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY));
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
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
