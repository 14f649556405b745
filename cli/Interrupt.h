#pragma once

#include <Pelon/Job.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace Cli {

/// Turns the first Ctrl-C, termination or hang-up into the cancellation of the program's job, which
/// is the calling thread's job while this object lives. A second one ends the program at once. A
/// signal that the program was started to ignore stays ignored.
///
/// Work that does not leave off within a fifth of a second, because it is between two places where
/// it looks, waits in a full pipe or gives back much memory, is ended for it: unfinished files are
/// removed, the line is printed, and the program exits with code 130.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();

    bool isRequested() const;

    /// What a signal cancels, for further threads of the program to work under.
    Pelon::Job& job();

    /// What to print where the work does not leave off: a line on standard error, and on standard output
    /// a document, if there is room for it.
    void setLastWords(std::string line, std::string document);

    /// The work is over, and whoever calls says so. Does not return where the program is being ended.
    void workIsOver();

private:
    void watch();

    Pelon::JobScope m_scope;
    std::mutex m_mutex;  // stays locked by whoever ends the work
    std::condition_variable m_over;
    std::string m_line, m_document;
    bool m_isOver = false;
    std::thread m_thread;
};

}  // namespace Cli
