#pragma once

#include <Pelon/Api.h>

#include <atomic>

/// @file
/// Cancellation.

namespace Pelon {

/// Work that its owner may call off.
class Job {
public:
    /// Safe from any thread and from a signal handler.
    void cancel() noexcept { m_cancelled.store(true, std::memory_order_relaxed); }
    /// Whether somebody cancelled it.
    bool isCancelled() const noexcept { return m_cancelled.load(std::memory_order_relaxed); }

private:
    static_assert(std::atomic<bool>::is_always_lock_free, "cancel() runs in signal handlers");
    std::atomic<bool> m_cancelled{false};
};

/// Makes `job` the calling thread's job until the scope ends; scopes nest.
class JobScope {
public:
    PELON_API explicit JobScope(Job& job) noexcept;  ///< `job` outlives the scope
    PELON_API ~JobScope();                           ///< the job before counts again
    JobScope(const JobScope&) = delete;
    JobScope& operator=(const JobScope&) = delete;

private:
    Job* m_outer;
};

/// Whether the calling thread's job was cancelled; false where the thread has none.
PELON_API bool isJobCancelled() noexcept;

}  // namespace Pelon
