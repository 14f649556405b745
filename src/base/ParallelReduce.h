#pragma once

// Reductions whose result no order of the pieces changes. For sums of floats there is treeSum().

#include "base/ParallelLoop.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <utility>

namespace Tessary {

/// Combines `reduce(begin, end)` of pieces of [0, count), in whatever order they come: `combine(a, b)`
/// has to be associative and commutative, `identity` its neutral element. The result of an empty range
/// is `identity`.
template <class T, class Reduce, class Combine>
T parallelReduce(uint count, uint grain, LoopContext context, const T& identity,
                 const Reduce& reduce, const Combine& combine)
{
    if (count <= grain)
        return count > 0 ? reduce(0, count) : identity;
    T result = identity;
    std::mutex mutex;
    parallelLoop(0, count, grain, context, [&](uint begin, uint end) {
        T piece = reduce(begin, end);
        const std::lock_guard<std::mutex> lock(mutex);
        result = combine(std::move(result), std::move(piece));
    });
    return result;
}

/// The least that is worth a thread of its own of what follows, which vectors do in a few microseconds.
inline constexpr uint kReduceGrain = 65536;

// The loops hold a copy of what they ask: behind a reference its captures are read again for every
// index, which cost computeQuadMesh 12 % at a million triangles.

/// For how many indices in [0, size) `isTrue(i)` holds. Isolated.
template <class IsTrue>
uint parallelCount(std::size_t size, const IsTrue& isTrue)
{
    return parallelReduce(
        static_cast<uint>(size), kReduceGrain, LoopContext::Isolated, 0u,
        [isTrue](uint begin, uint end) {
            uint count = 0;
            for (std::size_t i = begin; i < end; ++i)
                count += isTrue(i) ? 1u : 0u;
            return count;
        },
        [](uint a, uint b) { return a + b; });
}

/// Whether `isTrue(i)` holds for any index in [0, size). Isolated; looks at every index, so that
/// compilers vectorise the loop.
template <class IsTrue>
bool parallelAny(std::size_t size, const IsTrue& isTrue)
{
    return parallelReduce(
        static_cast<uint>(size), kReduceGrain, LoopContext::Isolated, false,
        [isTrue](uint begin, uint end) {
            uint found = 0;  // no bool: compilers vectorise this one
            for (std::size_t i = begin; i < end; ++i)
                found |= isTrue(i) ? 1u : 0u;
            return found != 0;
        },
        [](bool a, bool b) { return a || b; });
}

/// The largest `value(i)` of the indices in [0, size), 0 where there are none. Isolated.
template <class Value>
uint parallelMax(std::size_t size, const Value& value)
{
    return parallelReduce(
        static_cast<uint>(size), kReduceGrain, LoopContext::Isolated, 0u,
        [value](uint begin, uint end) {
            uint largest = 0;
            for (std::size_t i = begin; i < end; ++i)
                largest = std::max(largest, value(i));
            return largest;
        },
        [](uint a, uint b) { return std::max(a, b); });
}

}  // namespace Tessary
