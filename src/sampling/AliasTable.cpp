#include "sampling/AliasTable.h"

#include "base/Assert.h"

#include <utility>

// M. D. Vose, "A linear algorithm for generating random numbers with a given distribution", IEEE
// Transactions on Software Engineering 17(9), 1991. q_t is the area of triangle t with an average of 1
// over all slots; the slots after the triangles have 0:
//
//   slot            0      1      2      3      q_0 = 0.5, q_1 = 2.25, q_2 = 1.25
//   threshold       0.5    1      0.25   0
//   from there on   1             1      2      triangle 1: 0.5 + 1 + 0.75 = q_1
//
// Required: the slots are taken in this order, which is part of the result.

namespace Tessary {
namespace {

std::size_t powerOfTwoFrom(std::size_t count)
{
    std::size_t power = 1;
    while (power < count)
        power *= 2;
    return power;
}

// Two stacks of slots that together hold each at most once, so they share one block from its ends.
class SmallAndLarge {
public:
    explicit SmallAndLarge(std::size_t slots) : m_slots(slots), m_large(slots) {}

    bool hasSmall() const { return m_small > 0; }
    bool hasLarge() const { return m_large < m_slots.size(); }
    void push(uint slot, float q) { m_slots[1.0f > q ? m_small++ : --m_large] = slot; }
    uint popSmall() { return m_slots[--m_small]; }
    uint popLarge() { return m_slots[m_large++]; }

private:
    Array<uint> m_slots;
    std::size_t m_small = 0;  // one past the top of the small ones
    std::size_t m_large;      // the top of the large ones
};

// Gives the slots after the triangles to large ones altogether.
void fillUp(Array<float>& q, SmallAndLarge& slots, AliasTable& table)
{
    for (std::size_t z = table.alias.size(); z-- > q.size();) {
        table.threshold[z] = 0;
        if (!slots.hasLarge()) {
            // Rounding took the last one: any triangle will do, but no slot that is none.
            table.alias[z] = 0;
            continue;
        }
        const uint l = slots.popLarge();
        table.alias[z] = l;
        q[l] -= 1.0f;
        slots.push(l, q[l]);
    }
}

// Fills each small slot up from a large one.
void pairUp(Array<float>& q, SmallAndLarge& slots, AliasTable& table)
{
    while (slots.hasSmall() && slots.hasLarge()) {
        const uint u = slots.popSmall();
        const uint l = slots.popLarge();
        table.threshold[u] = static_cast<uint>(static_cast<double>(q[u]) * 4294967296.0);
        table.alias[u] = l;
        q[l] = (q[l] + q[u]) - 1.0f;
        slots.push(l, q[l]);
    }
}

void keepWhole(uint slot, AliasTable& table)
{
    table.threshold[slot] = 0xFFFFFFFF;
    table.alias[slot] = slot;
}

}  // namespace

AliasTable makeAliasTable(Array<float> areas, float totalArea)
{
    TESSARY_ASSERT(!areas.empty(), "a table of no triangles");
    const std::size_t size = powerOfTwoFrom(areas.size());
    AliasTable table{Array<uint>(size), Array<uint>(size), static_cast<uint>(size - 1)};

    Array<float> q = std::move(areas);
    const float scale = static_cast<float>(size) / totalArea;
    SmallAndLarge slots(q.size());
    for (std::size_t t = 0; t < q.size(); ++t) {
        q[t] *= scale;
        slots.push(static_cast<uint>(t), q[t]);
    }
    fillUp(q, slots, table);
    pairUp(q, slots, table);
    while (slots.hasSmall())
        keepWhole(slots.popSmall(), table);
    while (slots.hasLarge())
        keepWhole(slots.popLarge(), table);
    return table;
}

}  // namespace Tessary
