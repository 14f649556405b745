#include "base/Progress.h"

namespace Tessary {
namespace {

struct Phase {
    std::atomic<float>* share = nullptr;  // null where nobody looks
    float from = 0;
    float to = 0;
};

thread_local Phase t_phase;

// Threads of a loop report in no order.
void raise(std::atomic<float>& share, float to)
{
    float known = share.load(std::memory_order_relaxed);
    while (known < to && !share.compare_exchange_weak(known, to, std::memory_order_relaxed)) {
    }
}

}  // namespace

ProgressScope::ProgressScope(std::atomic<float>& share) noexcept : m_outer(t_phase.share)
{
    t_phase = {&share, 0, 0};
}

ProgressScope::~ProgressScope()
{
    t_phase = {m_outer, 0, 0};
}

void reportProgress(float share) noexcept
{
    if (t_phase.share)
        t_phase.share->store(share, std::memory_order_relaxed);
}

void beginPhase(float from, float to) noexcept
{
    t_phase.from = from;
    t_phase.to = to;
    reportProgress(from);
}

LoopProgress::LoopProgress(uint size) noexcept
    : m_share(t_phase.from < t_phase.to ? t_phase.share : nullptr),
      m_from(t_phase.from),
      m_to(t_phase.to),
      m_size(size)
{
    t_phase.from = t_phase.to;
}

void LoopProgress::add(uint count) noexcept
{
    if (!m_share)
        return;
    const uint done = m_done.fetch_add(count, std::memory_order_relaxed) + count;
    const float part = static_cast<float>(done) / static_cast<float>(m_size);
    raise(*m_share, m_from + part * (m_to - m_from));
}

}  // namespace Tessary
