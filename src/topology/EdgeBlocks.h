#pragma once

#include "base/Host.h"

#include <cstddef>
#include <vector>

namespace Tessary {

/// The corners of an edge table in its order, block of points by block, without the marks of those that
/// have no partner.
struct EdgeBlocks {
    std::vector<std::size_t> begin;          ///< of each block, and the end of the last
    std::vector<std::vector<uint>> singles;  ///< of each block, from its begin: who has no partner

    uint count() const { return static_cast<uint>(singles.size()); }
};

/// Expands the table in place: kNone after every corner that has no partner.
void expandInPlace(const EdgeBlocks& blocks, Array<uint>& table);

}  // namespace Tessary
