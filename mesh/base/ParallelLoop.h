#pragma once

#include <Pelon/Job.h>
#include <TessaryMesh/Errors.h>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <atomic>
#include <cstddef>
#include <thread>

namespace TessaryMesh {

/// Lets all threads of a loop leave off soon after the job of the one that began it is cancelled. A job
/// belongs to a thread, so the others only look at what that one saw.
class LoopStop {
public:
    /// To be asked for each piece of the work; one that begins after the job was cancelled does nothing.
    bool isSeen()
    {
        if (std::this_thread::get_id() == m_thread && Pelon::isJobCancelled())
            m_isSeen.store(true, std::memory_order_relaxed);
        return m_isSeen.load(std::memory_order_relaxed);
    }

    /// After the loop, whose result is not complete: throws Cancelled.
    void throwIfSeen()
    {
        if (isSeen())
            throw Cancelled();
    }

private:
    const std::thread::id m_thread = std::this_thread::get_id();
    std::atomic<bool> m_isSeen{false};
};

/// Runs `body(begin, end)` on all threads over pieces that together cover [0, count) once, none shorter
/// than `grain` / 2. Throws Cancelled, early, where the job of the calling thread is cancelled.
template <class Body>
void parallelLoop(std::size_t count, std::size_t grain, const Body& body)
{
    LoopStop stop;
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count, grain), [&](const auto& piece) {
        if (!stop.isSeen())
            body(piece.begin(), piece.end());
    });
    stop.throwIfSeen();
}

}  // namespace TessaryMesh
