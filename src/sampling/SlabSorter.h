#pragma once

#include "base/Host.h"

#include <cstdint>
#include <vector>

namespace Tessary {

/// Sorts the candidates of a slab of the grid by key. Those of one key stay in the order of their places,
/// which must be ascending. The buffers are reused from slab to slab.
class SlabSorter {
public:
    struct Item {
        std::uint64_t key;
        uint place;  ///< in the slab
    };

    std::vector<Item> items;

    void sort();

private:
    void sortByHalf(uint shift);
    void sortByDigit(uint shift, uint lowest, uint digitShift, uint digitBits);

    std::vector<Item> m_sorted;
    std::vector<uint> m_cursors;
};

}  // namespace Tessary
