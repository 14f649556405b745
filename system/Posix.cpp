#include "system/System.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <initializer_list>
#include <new>

namespace System {
namespace {

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        return;
    // No restart, so that waiting for input ends; reset, so that a second signal ends the program.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

std::uint64_t physicalMemory()
{
    return static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

bool replaceFile(const char* from, const char* to)
{
    return std::rename(from, to) == 0;
}

bool makeWakePipe(int ends[2])
{
    if (pipe(ends) != 0)
        return false;
    for (int end = 0; end < 2; ++end) {
        fcntl(ends[end], F_SETFD, FD_CLOEXEC);
        fcntl(ends[end], F_SETFL, fcntl(ends[end], F_GETFL) | O_NONBLOCK);
    }
    return true;
}

std::size_t pipeRoom()
{
    return PIPE_BUF;
}

void secureStandardStreams()
{
    // open() takes the lowest free descriptor, which is the one just found closed.
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            static_cast<void>(open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY));
}

void ignoreWriteSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void onInterruption(void (*handler)(int))
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        handle(signal, handler);
}

SignalsHeldBack::SignalsHeldBack() : m_mask(new (std::nothrow) sigset_t)
{
    sigset_t all;
    sigfillset(&all);
    if (m_mask)
        pthread_sigmask(SIG_SETMASK, &all, static_cast<sigset_t*>(m_mask));
}

SignalsHeldBack::~SignalsHeldBack()
{
    if (m_mask)
        pthread_sigmask(SIG_SETMASK, static_cast<sigset_t*>(m_mask), nullptr);
    delete static_cast<sigset_t*>(m_mask);
}

}  // namespace System
