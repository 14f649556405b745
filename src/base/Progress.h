#pragma once

#include "base/Host.h"

#include <Tessary/Progress.h>

#include <atomic>

namespace Tessary {

/// Says that this thread's call is done with `from` of its work, and that its next bound loops take it
/// on to `to`.
void beginPhase(float from, float to) noexcept;

/// What a loop over `size` indices tells of the phase that it belongs to; made on the thread of the call.
class LoopProgress {
public:
    explicit LoopProgress(uint size) noexcept;

    /// So many more indices are done. Any thread.
    void add(uint count) noexcept;

private:
    std::atomic<float>* m_share;
    float m_from, m_to;
    uint m_size;
    std::atomic<uint> m_done{0};
};

}  // namespace Tessary
