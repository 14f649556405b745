#pragma once

// The words of POSIX that the C library of Windows lacks; see System.h. Names of files are in the process's code
// page, which is UTF-8 where its manifest says so.

#include <fcntl.h>
#include <io.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <climits>

#include <cstddef>

// Bytes, which no child inherits; there is no opening of a folder.
constexpr int O_CLOEXEC = _O_NOINHERIT | _O_BINARY;
constexpr int O_DIRECTORY = 0;

constexpr short POLLIN = 1;
constexpr short POLLOUT = 4;

struct pollfd {
    int fd;
    short events;
    short revents;
};

/// Of one descriptor: whether a pipe or a console has something to read. All others are ready.
int poll(pollfd* descriptors, unsigned count, int milliseconds);

ssize_t pread(int descriptor, void* to, std::size_t count, off_t begin);
int fsync(int descriptor);
int link(const char* from, const char* to);

/// There are no files without a name, and no links by descriptor: ENOSYS.
constexpr int AT_FDCWD = -100;
constexpr int AT_SYMLINK_FOLLOW = 0x400;
int linkat(int, const char* from, int, const char* to, int);

/// The system follows links by itself: nothing is read as one.
ssize_t readlink(const char* path, char* to, std::size_t size);
char* realpath(const char* path, char* to);

/// Permissions are those of the folder.
int fchmod(int descriptor, unsigned permissions);
