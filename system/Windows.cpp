#include "system/System.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace {

int failWith(int error)
{
    errno = error;
    return -1;
}

int failBySystem()
{
    switch (GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return failWith(ENOENT);
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return failWith(EEXIST);
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return failWith(EACCES);
        case ERROR_DISK_FULL:
            return failWith(ENOSPC);
        case ERROR_NOT_SUPPORTED:
        case ERROR_INVALID_FUNCTION:
            return failWith(ENOTSUP);
        default:
            return failWith(EIO);
    }
}

HANDLE handleOf(int descriptor)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

// A pipe whose writer has gone is ready, too: reading it tells.
bool hasInput(HANDLE handle)
{
    DWORD waiting = 0;
    if (GetFileType(handle) == FILE_TYPE_PIPE)
        return PeekNamedPipe(handle, nullptr, 0, nullptr, &waiting, nullptr) == 0 || waiting > 0;
    if (GetFileType(handle) == FILE_TYPE_CHAR)
        return WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
    return true;
}

}  // namespace

int poll(pollfd* descriptors, unsigned, int milliseconds)
{
    constexpr int kPeriod = 10;
    for (int waited = 0;; waited += kPeriod) {
        descriptors->revents = descriptors->events;
        if ((descriptors->events & POLLIN) == 0 || hasInput(handleOf(descriptors->fd)))
            return 1;
        descriptors->revents = 0;
        if (milliseconds >= 0 && waited >= milliseconds)
            return 0;
        Sleep(kPeriod);
    }
}

ssize_t pread(int descriptor, void* to, std::size_t count, off_t begin)
{
    constexpr std::size_t kMost = std::size_t{1} << 30;
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(static_cast<std::uint64_t>(begin));
    place.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(begin) >> 32);
    DWORD got = 0;
    if (ReadFile(handleOf(descriptor), to, static_cast<DWORD>(std::min(count, kMost)), &got,
                 &place))
        return static_cast<ssize_t>(got);
    return GetLastError() == ERROR_HANDLE_EOF ? 0 : failBySystem();
}

int fsync(int descriptor)
{
    return _commit(descriptor);
}

int link(const char* from, const char* to)
{
    return CreateHardLinkA(to, from, nullptr) ? 0 : failBySystem();
}

int linkat(int, const char*, int, const char*, int)
{
    return failWith(ENOSYS);
}

ssize_t readlink(const char*, char*, std::size_t)
{
    return failWith(EINVAL);
}

char* realpath(const char* path, char* to)
{
    return _access(path, 0) == 0 ? _fullpath(to, path, 0) : nullptr;
}

int fchmod(int, unsigned)
{
    return 0;
}

namespace System {

std::uint64_t physicalMemory()
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

bool replaceFile(const char* from, const char* to)
{
    return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) || failBySystem() == 0;
}

bool makeWakePipe(int ends[2])
{
    return _pipe(ends, 4096, _O_BINARY | _O_NOINHERIT) == 0;
}

std::size_t pipeRoom()
{
    return 4096;
}

void secureStandardStreams()
{
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (_setmode(descriptor, _O_BINARY) == -1)
            static_cast<void>(_open("NUL", descriptor == 0 ? _O_WRONLY : _O_RDONLY));
}

void ignoreWriteSignals() {}

// The C library resets a handler that it calls, as a second Ctrl-C needs it.
void onInterruption(void (*handler)(int))
{
    for (const int signal : {SIGINT, SIGTERM, SIGBREAK})
        if (std::signal(signal, handler) == SIG_IGN)
            std::signal(signal, SIG_IGN);
}

SignalsHeldBack::SignalsHeldBack() : m_mask(nullptr) {}

SignalsHeldBack::~SignalsHeldBack() = default;

}  // namespace System
