#pragma once

// What the mesh library and the program ask of the operating system, in the words of POSIX: descriptors, files,
// folders, waiting. On POSIX systems it is what their headers declare. On Windows the C library has most of it, and
// Windows.cpp the rest, under the same names and with errno, so that callers need not know where they run. What
// has no common name stands below.

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#include "system/Windows.h"
#else
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <climits>
#endif

namespace System {

/// Of the whole machine, in bytes, whatever limits there are.
std::uint64_t physicalMemory();

/// Moves a file, over another one of that name. False with errno. The file may be open.
bool replaceFile(const char* from, const char* to);

/// A pipe for a signal handler to wake a thread by, whose ends never wait and are inherited by no program.
/// False with errno.
bool makeWakePipe(int ends[2]);

/// How many bytes a pipe with room takes without waiting for its reader.
std::size_t pipeRoom();

/// Descriptors that arrive closed get a file that refuses input and output, and text stays as it is written.
void secureStandardStreams();

/// A pipe without a reader, and a file beyond the user's limit, are errors of the write and no signals.
void ignoreWriteSignals();

/// Calls the handler at the first Ctrl-C, termination or hang-up, unless the program was started to ignore that;
/// waiting for input ends. The second one ends the program.
void onInterruption(void (*handler)(int signal));

/// While this lives, threads that are made are interrupted by no signal.
class SignalsHeldBack {
public:
    SignalsHeldBack();
    ~SignalsHeldBack();
    SignalsHeldBack(const SignalsHeldBack&) = delete;
    SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

private:
    void* m_mask;  // the one to put back
};

}  // namespace System
