#pragma once

#include "base/Host.h"

#include <memory>
#include <type_traits>

namespace Tessary {

/// How a loop stands to the caller's job.
enum class LoopContext {
    Isolated,  ///< runs to its end, never polled
    Bound,     ///< ends early where the caller's job, or the task that it runs in, is cancelled
};

/// A loop body, `body(begin, end)`, referred to for the time of one call.
class LoopBody {
public:
    template <class Body, class = std::enable_if_t<!std::is_same_v<std::decay_t<Body>, LoopBody>>>
    LoopBody(const Body& body)  // NOLINT(google-explicit-constructor)
        : m_body(std::addressof(body)), m_call([](const void* b, uint begin, uint end) {
              (*static_cast<const Body*>(b))(begin, end);
          })
    {}

    void operator()(uint begin, uint end) const { m_call(m_body, begin, end); }

private:
    const void* m_body;
    void (*m_call)(const void*, uint, uint);
};

/// Runs `body` over pieces of [begin, end) that together cover it once.
///
/// A range no longer than `grain` runs in one piece on the caller's thread and is never polled. Any
/// other bound loop begins no piece once the caller's job is seen to be cancelled or a scheduler's
/// context around it is, and then throws std::runtime_error with the host's text; what the body has
/// written stays. The body is called through a pointer, once per piece, so that the
/// scheduler's code exists once and not once per body.
///
/// A range of up to `few` indices runs in one piece on the caller's thread, too, and is polled like any.
void parallelLoop(uint begin, uint end, uint grain, LoopContext context, LoopBody body,
                  uint few = 0);

/// So few indices of a loop that takes some nanoseconds for each are done before another thread is awake:
/// quads of 1,000 triangles took 34 us on two threads, 12 so; of 10,000 they take as long as a plain loop.
inline constexpr uint kFewIndices = 8192;

/// The same for a loop that merely copies or fills.
inline constexpr uint kFewCopies = 65536;

/// The same for a loop that takes tens of nanoseconds for each.
inline constexpr uint kFewSlowIndices = 1024;

/// How many pieces of a loop may run at the same time.
uint loopConcurrency();

/// Runs `body(i)` for every index in [0, count), grain 1; up to `few` of them on the caller's thread.
template <class Body>
void parallelForEach(uint count, LoopContext context, const Body& body, uint few = kFewIndices)
{
    const auto forEach = [&body](uint begin, uint end) {
        const Body each = body;  // a copy that registers can hold
        for (uint i = begin; i < end; ++i)
            each(i);
    };
    parallelLoop(0, count, 1, context, forEach, few);
}

/// The same for bodies that are each worth a thread.
template <class Body>
void parallelForEachPiece(uint count, LoopContext context, const Body& body)
{
    parallelForEach(count, context, body, 0);
}

/// The sum over a fixed tree, the same for any number of threads: a range [b, e) of more than one
/// value is the sum of [b, m) plus that of [m, e), m = b + (e - b) / 2. Never polled; 0 of no values.
float treeSum(const float* values, uint count);

}  // namespace Tessary
