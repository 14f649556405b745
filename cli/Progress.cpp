#include "Progress.h"

#include "Console.h"
#include "QuietThread.h"
#include "system/System.h"

#include <algorithm>
#include <utility>

namespace Cli {
namespace {

constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kPeriod{100};
constexpr std::size_t kWidth = 79;  // a longer line would wrap and could not be erased

std::string cutToWidth(std::string line)
{
    std::size_t length = std::min(line.size(), kWidth);
    while (length < line.size() && length > 0 && (line[length] & 0xC0) == 0x80)
        --length;
    line.resize(length);
    return line;
}

}  // namespace

Progress::~Progress()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
        erase();
    }
    m_changed.notify_all();
    m_thread.join();
}

void Progress::start(std::function<bool()> isStopping)
{
    m_isStopping = std::move(isStopping);
    m_thread = quietThread([this] { run(); });
}

void Progress::show(std::string line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    erase();
    m_line = std::move(line);
    m_share = 0;
    m_since = Clock::now();
}

void Progress::change(std::string line, float share)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_line = std::move(line);
    m_share = share;
}

std::unique_lock<std::mutex> Progress::clear()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    erase();
    return lock;
}

void Progress::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopped) {
        const Clock::duration elapsed = Clock::now() - m_since;
        if (!m_line.empty() && (elapsed > kPatience || m_isStopping()))
            draw(elapsed);
        m_changed.wait_for(lock, kPeriod);
    }
}

void Progress::draw(Clock::duration elapsed)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
    const auto percent = static_cast<int>(100 * m_share);
    std::string state = percent > 0 ? ", " + std::to_string(percent) + " %" : "";
    state += seconds > 0 ? ", " + std::to_string(seconds) + " s" : " ...";
    if (m_isStopping())
        state = ", stopping";
    m_drawn = writeAll(STDERR_FILENO, "\r\033[K" + cutToWidth(m_line + state));
}

void Progress::erase()
{
    if (m_drawn)
        writeAll(STDERR_FILENO, "\r\033[K");
    m_drawn = false;
}

}  // namespace Cli
