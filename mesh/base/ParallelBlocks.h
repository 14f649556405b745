#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

/// Work in blocks on all threads. A block is called through a pointer and should be worth it: tens of
/// microseconds, and at most some tens of milliseconds, for the caller's job is asked once a block.
/// Neither function minds being called inside a cancelled task.
namespace TessaryMesh {

/// Runs `body(block)` for every block below `count`, in any order. Throws Cancelled, or what a body
/// threw; then the bodies of other blocks may have run or not.
void forEachBlock(std::size_t count, const std::function<void(std::size_t block)>& body);

/// Runs `body(begin, end)` for blocks of `size` that together are [0, count). Throws as forEachBlock() does.
template <class Body>
void forEachRange(std::size_t count, std::size_t size, const Body& body)
{
    forEachBlock((count + size - 1) / size, [&](std::size_t block) {
        body(block * size, std::min((block + 1) * size, count));
    });
}

/// How many blocks are between being made and being taken at a time.
std::size_t blockSlots();

/// Makes blocks on all threads and takes them one at a time in their order, so that memory for
/// blockSlots() of them is enough. `make(block, slot)` may use the slot's memory until
/// `take(block, slot)` is over. Throws as forEachBlock() does.
void pipeBlocks(std::size_t count,
                const std::function<void(std::size_t block, std::size_t slot)>& make,
                const std::function<void(std::size_t block, std::size_t slot)>& take);

}  // namespace TessaryMesh
