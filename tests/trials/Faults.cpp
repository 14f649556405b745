// Loaded before a program (LD_PRELOAD), a layer between it and the system that fails calls and writes down which
// ones there were:
//   TRIAL_FAIL="write 3"     the third write fails, with ENOSPC; "tmpfile 0": every one
//   TRIAL_TRACE=FILE         a line for each call
// write, fsync and close count for files only, not for streams and folders.

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

template <class Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void trace(const char* name)
{
    static const char* const path = std::getenv("TRIAL_TRACE");
    if (!path)
        return;
    static const int file = real<int(const char*, int, ...)>("open")(
        path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    char line[64];
    const int length = std::snprintf(line, sizeof line, "%s\n", name);
    real<ssize_t(int, const void*, std::size_t)>("write")(file, line, length);
}

// Whether this call is the one to fail.
bool fails(const char* name, int error)
{
    trace(name);
    static const char* const wish = std::getenv("TRIAL_FAIL");
    const std::size_t length = std::strlen(name);
    if (!wish || std::strncmp(wish, name, length) != 0 || wish[length] != ' ')
        return false;
    static const long nth = std::atol(wish + length);
    static std::atomic<long> calls{0};
    if (++calls != nth && nth != 0)
        return false;
    errno = error;
    return true;
}

bool isFile(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && descriptor > 2 &&
           (::fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
}

bool isFolder(int descriptor)
{
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
    if (isUnnamed ? fails("tmpfile", EOPNOTSUPP)
                  : (flags & O_CREAT) != 0 && fails("create", EACCES))
        return -1;
    return real<int(const char*, int, ...)>("open")(path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, std::size_t count)
{
    if (isFile(descriptor) && fails("write", ENOSPC))
        return -1;
    return real<ssize_t(int, const void*, std::size_t)>("write")(descriptor, bytes, count);
}

int fsync(int descriptor)
{
    if (fails(isFolder(descriptor) ? "fsync-folder" : "fsync", EIO))
        return -1;
    return real<int(int)>("fsync")(descriptor);
}

int close(int descriptor)
{
    const bool failed = isFile(descriptor) && fails("close", EIO);
    const int result = real<int(int)>("close")(descriptor);
    if (failed)
        errno = EIO;
    return failed ? -1 : result;
}

int rename(const char* from, const char* to)
{
    return fails("rename", EIO) ? -1 : real<int(const char*, const char*)>("rename")(from, to);
}

int link(const char* from, const char* to)
{
    return fails("link", EPERM) ? -1 : real<int(const char*, const char*)>("link")(from, to);
}

int linkat(int folder, const char* from, int toFolder, const char* to, int flags)
{
    return fails("linkat", EIO) ? -1
                                : real<int(int, const char*, int, const char*, int)>("linkat")(
                                      folder, from, toFolder, to, flags);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*work)(void*),
                   void* argument)
{
    return fails("thread", EAGAIN)
               ? EAGAIN
               : real<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>(
                     "pthread_create")(thread, attributes, work, argument);
}
}
