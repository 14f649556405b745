#include "Console.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

namespace Cli {

void secureStandardStreams()
{
    // open() takes the lowest free descriptor, which is the one just found closed.
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY));
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace Cli
