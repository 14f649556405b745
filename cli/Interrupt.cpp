#include "Interrupt.h"

#include "Console.h"
#include "Program.h"
#include "QuietThread.h"

#include "system/System.h"

#include <TessaryMesh/Files.h>

#include <chrono>
#include <utility>

namespace Cli {
namespace {

constexpr std::chrono::milliseconds kPatience{180};

Pelon::Job s_job;
int s_wake[2] = {-1, -1};  // closed when there is nothing left to watch

// A pipe that is ready takes so many bytes without waiting for its reader.
bool hasRoom(int descriptor, std::size_t bytes)
{
    pollfd wanted = {descriptor, POLLOUT, 0};
    return bytes <= System::pipeRoom() && poll(&wanted, 1, 0) == 1 &&
           (wanted.revents & POLLOUT) != 0;
}

void cancelJob(int)
{
    s_job.cancel();
    // NOLINTNEXTLINE(bugprone-unused-return-value): a full pipe has woken the thread before
    [[maybe_unused]] const ssize_t written = write(s_wake[1], "", 1);
}

}  // namespace

Interrupt::Interrupt() : m_scope(s_job)
{
    if (System::makeWakePipe(s_wake))
        m_thread = quietThread([this] { watch(); });
    System::onInterruption(cancelJob);
}

Interrupt::~Interrupt()
{
    workIsOver();
    close(std::exchange(s_wake[1], -1));
    if (m_thread.joinable())
        m_thread.join();
    close(s_wake[0]);
}

bool Interrupt::isRequested() const
{
    return s_job.isCancelled();
}

Pelon::Job& Interrupt::job()
{
    return s_job;
}

void Interrupt::setLastWords(std::string line, std::string document)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_line = std::move(line);
    m_document = std::move(document);
}

void Interrupt::workIsOver()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isOver = true;
    m_over.notify_all();
}

void Interrupt::watch()
{
    pollfd wake = {s_wake[0], POLLIN, 0};
    while (poll(&wake, 1, -1) < 0) {
    }
    if ((wake.revents & POLLIN) == 0)
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_over.wait_for(lock, kPatience, [this] { return m_isOver; }))
        return;
    TessaryMesh::removeUnfinishedFiles();
    writeAll(STDERR_FILENO, (isatty(STDERR_FILENO) ? "\r\033[K" : "") + m_line + "\n");
    if (hasRoom(STDOUT_FILENO, m_document.size()))
        writeAll(STDOUT_FILENO, m_document);
    _exit(static_cast<int>(ExitCode::Interrupted));
}

}  // namespace Cli
