#include "sampling/SlabSorter.h"

#include "base/CountingSort.h"

#include <algorithm>

// A radix sort, least significant digit first: a counting sort of each digit of slot c, then of slot b.
// Only as many bits count as the slots of this slab span.

namespace Tessary {
namespace {

// Below this many items the counters of a digit cost more than comparisons. Of the whole sampling, on
// one thread, 200 thousand candidates scattered over 30 thousand slabs: 54 ms, 63 without; 16 and 200
// are within 4 %. On a torus, 220 thousand: 60 ms, 73 with comparisons alone.
constexpr std::size_t kFewItems = 48;

// The same torus: 55 ms; 60 with 8 bits, 59 with 14.
constexpr uint kMostDigitBits = 11;

uint bitsOf(uint value)
{
    uint bits = 0;
    for (; value > 0; value >>= 1)
        ++bits;
    return bits;
}

}  // namespace

void SlabSorter::sort()
{
    if (items.size() < kFewItems) {
        std::sort(items.begin(), items.end(), [](const Item& x, const Item& y) {
            return x.key != y.key ? x.key < y.key : x.place < y.place;
        });
        return;
    }
    sortByHalf(0);
    sortByHalf(32);
}

// Sorts by the 32 bits of the key at `shift`, in digits of nearly equal length.
void SlabSorter::sortByHalf(uint shift)
{
    uint lowest = 0xFFFFFFFF;
    uint highest = 0;
    for (const Item& item : items) {
        const auto half = static_cast<uint>(item.key >> shift);
        lowest = std::min(lowest, half);
        highest = std::max(highest, half);
    }
    const uint bits = bitsOf(highest - lowest);
    const uint digits = (bits + kMostDigitBits - 1) / kMostDigitBits;
    for (uint digit = 0; digit < digits; ++digit) {
        const uint digitBits = (bits + digits - 1) / digits;
        sortByDigit(shift, lowest, digit * digitBits, digitBits);
    }
}

void SlabSorter::sortByDigit(uint shift, uint lowest, uint digitShift, uint digitBits)
{
    const uint mask = (1u << digitBits) - 1;
    const auto digitOf = [=](const Item& item) {
        return (static_cast<uint>(item.key >> shift) - lowest) >> digitShift & mask;
    };
    m_cursors.assign(std::size_t{mask} + 1, 0);
    for (const Item& item : items)
        ++m_cursors[digitOf(item)];
    exclusiveScan(m_cursors.data(), m_cursors.size());
    m_sorted.resize(items.size());
    for (const Item& item : items)
        m_sorted[m_cursors[digitOf(item)]++] = item;
    items.swap(m_sorted);
}

}  // namespace Tessary
