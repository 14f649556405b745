#pragma once

#include "base/Host.h"

#include <memory>
#include <type_traits>

namespace Tessary {

/// How a loop stands to the caller's job.
enum class LoopContext {
    Isolated,  ///< runs to its end, never polled
    Bound,     ///< polled once it is over
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
/// A range no longer than `grain` runs in one piece on the caller's thread and is never polled.
/// After any other bound loop a cancelled job throws std::runtime_error with the host's text; what
/// the body has written stays. The body is called through a pointer, once per piece, so that the
/// scheduler's code exists once and not once per body.
void parallelLoop(uint begin, uint end, uint grain, LoopContext context, LoopBody body);

/// How many pieces of a loop may run at the same time.
uint loopConcurrency();

/// Runs `body(i)` for every index in [0, count), grain 1.
template <class Body>
void parallelForEach(uint count, LoopContext context, const Body& body)
{
    parallelLoop(0, count, 1, context, [&body](uint begin, uint end) {
        for (uint i = begin; i < end; ++i)
            body(i);
    });
}

/// The sum over a fixed tree, the same for any number of threads: a range [b, e) of more than one
/// value is the sum of [b, m) plus that of [m, e), m = b + (e - b) / 2. Never polled; 0 of no values.
float treeSum(const float* values, uint count);

}  // namespace Tessary
