#pragma once

#include "Interrupt.h"
#include "Progress.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace Cli {

enum class ExitCode {
    Done = 0,
    CheckFailed = 1,  ///< also whatever has no code of its own
    Usage = 2,
    File = 3,  ///< unreadable, unwritable, or more than the memory holds
    InvalidMesh = 4,
    Interrupted = 130,
};

/// What every verb can be told.
struct Settings {
    bool json = false;
    bool quiet = false;
    unsigned threads = 0;        ///< 0: as many as the machine has
    bool isBatch = false;        ///< several files: each is told in one line
    std::uint64_t maxInput = 0;  ///< bytes; 0: what the mesh library allows
};

/// What there is one of, however many files are worked on: settings, standard streams, the line of
/// progress, and the end by a signal.
class Program {
public:
    Settings settings;
    Interrupt interrupt;
    Progress progress;

    /// Begins to show progress where there is somebody to see it.
    void showProgress();

    /// One line on standard error. Control characters in it, as in a name from a file, are spelled out.
    void say(const std::string& line);

    /// Whether standard error refused a line.
    bool hasLostMessages() const { return m_messageLost; }

private:
    std::atomic<bool> m_messageLost{false};
};

/// Throws FileError where standard output takes no more.
void print(const std::string& text);

}  // namespace Cli
