#include "sampling/CandidateGrid.h"

#include "base/ParallelLoop.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tessary {
namespace {

using Key = CandidateGrid::Key;

// Biased, so that keys order as slots do. No slot is so near the ends that a neighbour's key wraps.
Key keyOf(std::int32_t slotB, std::int32_t slotC)
{
    constexpr uint kBias = 0x80000000;
    return Key{static_cast<uint>(slotB) + kBias} << 32 | (static_cast<uint>(slotC) + kBias);
}

// What is added to a key to lead to the row `row` of a neighbourhood.
Key stepAlongB(uint row)
{
    return (Key{row % 3} - 1) << 32;
}

// The parts in which loops take the candidates. Each may have counters of its own: a quarter as many as it has
// candidates, so that they take little memory however many threads there are.
class Pieces {
public:
    explicit Pieces(std::size_t size, std::size_t counters = 0)
        : m_size(size),
          m_count(static_cast<uint>(std::min<std::size_t>(
              4 * std::size_t{loopConcurrency()}, 1 + size / std::max(kSizeOfOne, 4 * counters))))
    {}

    uint count() const { return m_count; }
    std::size_t begin(uint piece) const { return m_size * piece / m_count; }
    std::size_t end(uint piece) const { return begin(piece + 1); }

private:
    static constexpr std::size_t kSizeOfOne = 16384;

    std::size_t m_size;
    uint m_count;
};

struct Span {
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    std::int32_t highest = std::numeric_limits<std::int32_t>::min();

    void add(std::int32_t low, std::int32_t high)
    {
        lowest = std::min(lowest, low);
        highest = std::max(highest, high);
    }
    std::int64_t length() const { return std::int64_t{highest} - lowest + 1; }
};

struct Extent {
    Span a, b;
    bool leavesOut = false;
    bool isEmpty = true;

    void add(const CandidateGrid::Place& place)
    {
        if (place.isNearNobody()) {
            leavesOut = true;
            return;
        }
        isEmpty = false;
        a.add(place.a.slot, place.a.slot);
        b.add(place.b.slot, place.b.slot);
    }
    void add(const Extent& other)
    {
        leavesOut |= other.leavesOut;
        isEmpty &= other.isEmpty;
        a.add(other.a.lowest, other.a.highest);
        b.add(other.b.lowest, other.b.highest);
    }
};

}  // namespace

bool CandidateGrid::Place::isNearNobody() const
{
    const bool isFinite =
        std::isfinite(a.local) && std::isfinite(b.local) && std::isfinite(c.local);
    return !isFinite || (a.isOutOfRange && b.isOutOfRange && c.isOutOfRange);
}

CandidateGrid::CandidateGrid(const Array<float3>& positions, float scale)
    : m_positions(positions), m_scale(scale)
{
    chooseSlabs();
    fileIntoSlabs();
    sortSlabs();
    linkNeighbours();
}

CandidateGrid::Place CandidateGrid::place(const float3& p) const
{
    return {GridPlace::of(m_scale * p.*m_axisA), GridPlace::of(m_scale * p.*m_axisB),
            GridPlace::of(m_scale * p.z)};
}

void CandidateGrid::chooseSlabs()
{
    const Pieces pieces(m_positions.size());
    std::vector<Extent> extents(pieces.count());
    parallelForEach(pieces.count(), LoopContext::Bound, [&](uint piece) {
        Extent extent;
        for (std::size_t i = pieces.begin(piece); i < pieces.end(piece); ++i)
            extent.add(place(m_positions[i]));
        extents[piece] = extent;
    });
    Extent whole;
    for (const Extent& extent : extents)
        whole.add(extent);
    m_leavesOut = whole.leavesOut;
    if (whole.isEmpty)
        return;
    // The squares of x and y are added to each other first, so the pair test allows it.
    if (whole.b.length() > whole.a.length()) {
        std::swap(m_axisA, m_axisB);
        std::swap(whole.a, whole.b);
    }
    setSlabs(whole.a.lowest, whole.a.highest);
}

// A slab for every slot or, where they lie far apart, for every slot that occurs.
void CandidateGrid::setSlabs(std::int32_t lowest, std::int32_t highest)
{
    const std::int64_t length = std::int64_t{highest} - lowest + 1;
    if (length <= static_cast<std::int64_t>(m_positions.size() / 4 + 1024)) {
        for (std::int64_t slot = lowest; slot <= highest; ++slot)
            m_slotOfSlab.push_back(static_cast<std::int32_t>(slot));
        return;
    }
    forEachFiled(0, m_positions.size(),
                 [this](uint, std::int32_t slot) { m_slotOfSlab.push_back(slot); });
    std::sort(m_slotOfSlab.begin(), m_slotOfSlab.end());
    m_slotOfSlab.erase(std::unique(m_slotOfSlab.begin(), m_slotOfSlab.end()), m_slotOfSlab.end());
}

// The first slab whose slot is not below `slot`.
std::size_t CandidateGrid::slabFrom(std::int64_t slot) const
{
    const std::int64_t first = m_slotOfSlab.front();
    const std::int64_t last = m_slotOfSlab.back();
    if (slot < first || slot > last)
        return slot < first ? 0 : m_slotOfSlab.size();
    if (last - first + 1 == static_cast<std::int64_t>(m_slotOfSlab.size()))
        return static_cast<std::size_t>(slot - first);
    return static_cast<std::size_t>(
        std::lower_bound(m_slotOfSlab.begin(), m_slotOfSlab.end(), slot) - m_slotOfSlab.begin());
}

bool CandidateGrid::isSlab(std::size_t slab, std::int64_t slot) const
{
    return slab < m_slotOfSlab.size() && m_slotOfSlab[slab] == slot;
}

// Calls visit(id, slot of the slab) for the candidates among [begin, end) that are not left out.
template <class Visit>
void CandidateGrid::forEachFiled(std::size_t begin, std::size_t end, const Visit& visit) const
{
    for (std::size_t i = begin; i < end; ++i)
        if (!m_leavesOut || !place(m_positions[i]).isNearNobody())
            visit(static_cast<uint>(i), GridPlace::of(m_scale * m_positions[i].*m_axisA).slot);
}

// A counting sort: by slab, and within one as they come.
void CandidateGrid::fileIntoSlabs()
{
    const std::size_t slabs = m_slotOfSlab.size();
    const Pieces pieces(m_positions.size(), slabs);
    Array<uint> cursors(pieces.count() * slabs);
    m_filed.resize(m_positions.size());
    parallelForEach(pieces.count(), LoopContext::Bound, [&](uint piece) {
        uint* const counts = cursors.data() + piece * slabs;
        forEachFiled(pieces.begin(piece), pieces.end(piece), [&](uint i, std::int32_t slot) {
            m_filed[i] = 1;
            ++counts[slabFrom(slot)];
        });
    });
    uint sum = 0;
    for (std::size_t slab = 0; slab < slabs; ++slab) {
        m_slabBegin.push_back(sum);
        for (uint piece = 0; piece < pieces.count(); ++piece)
            sum += std::exchange(cursors[piece * slabs + slab], sum);
    }
    m_slabBegin.push_back(sum);
    m_bySlab.resize(sum);
    parallelForEach(pieces.count(), LoopContext::Bound, [&](uint piece) {
        uint* const own = cursors.data() + piece * slabs;
        forEachFiled(pieces.begin(piece), pieces.end(piece), [&](uint i, std::int32_t slot) {
            m_bySlab[own[slabFrom(slot)]++] = {m_positions[i], i};
        });
    });
}

void CandidateGrid::sortSlabs()
{
    const auto slabs = static_cast<uint>(m_slotOfSlab.size());
    for (Array<float>& local : m_local)
        local.resize(candidateCount() + kPadding);
    m_slotC.resize(candidateCount() + kPadding);
    m_rank.resize(candidateCount() + kPadding);
    m_firstBin.resize(std::size_t{slabs} + 1);

    // How many bins come before a slab is not known yet, but not more than candidates.
    Array<Key> keys(candidateCount());
    Array<uint> begins(candidateCount());
    parallelLoop(0, slabs, 1, LoopContext::Bound, [&](uint firstSlab, uint endSlab) {
        SlabSorter sorter;
        for (uint slab = firstSlab; slab < endSlab; ++slab) {
            const uint begin = m_slabBegin[slab];
            collect(slab, sorter.items);
            sorter.sort();
            m_firstBin[slab + 1] =
                store(slab, sorter.items, keys.data() + begin, begins.data() + begin);
        }
    });
    m_bySlab = Array<Filed>();
    for (uint slab = 0; slab < slabs; ++slab)
        m_firstBin[slab + 1] += m_firstBin[slab];

    m_binKey.resize(binCount());
    m_binBegin.resize(std::size_t{binCount()} + 1);
    parallelForEach(slabs, LoopContext::Bound, [&](uint slab) {
        const uint first = m_firstBin[slab];
        const uint count = m_firstBin[slab + 1] - first;
        std::copy_n(keys.data() + m_slabBegin[slab], count, m_binKey.data() + first);
        std::copy_n(begins.data() + m_slabBegin[slab], count, m_binBegin.data() + first);
    });
    m_binBegin[binCount()] = m_slabBegin.back();
}

void CandidateGrid::collect(uint slab, std::vector<SlabSorter::Item>& items) const
{
    const Filed* const filed = m_bySlab.data() + m_slabBegin[slab];
    items.resize(m_slabBegin[slab + 1] - m_slabBegin[slab]);
    for (std::size_t j = 0; j < items.size(); ++j) {
        const float3& p = filed[j].position;
        items[j] = {
            keyOf(GridPlace::of(m_scale * p.*m_axisB).slot, GridPlace::of(m_scale * p.z).slot),
            static_cast<uint>(j)};
    }
}

// Writes the sorted candidates of a slab, and its bins to `keys` and `begins`. Returns their number.
uint CandidateGrid::store(uint slab, const std::vector<SlabSorter::Item>& items, Key* keys,
                          uint* begins)
{
    const Filed* const filed = m_bySlab.data() + m_slabBegin[slab];
    uint bins = 0;
    for (std::size_t j = 0; j < items.size(); ++j) {
        const std::size_t candidate = m_slabBegin[slab] + j;
        if (j == 0 || items[j].key != items[j - 1].key) {
            keys[bins] = items[j].key;
            begins[bins++] = static_cast<uint>(candidate);
        }
        const Filed& own = filed[items[j].place];
        const Place at = place(own.position);
        m_local[0][candidate] = at.a.local;
        m_local[1][candidate] = at.b.local;
        m_local[2][candidate] = at.c.local;
        m_slotC[candidate] = at.c.slot;
        m_rank[candidate] = static_cast<std::int32_t>(own.id ^ kSign);
    }
    return bins;
}

// Finds what the bins of a slab have in a row of slab `other`: both are sorted, so one walk does.
void CandidateGrid::linkRow(uint slab, std::size_t other, uint row)
{
    const uint end = m_firstBin[other + 1];
    uint first = m_firstBin[other];
    for (uint bin = m_firstBin[slab]; bin < m_firstBin[slab + 1]; ++bin) {
        const Key center = m_binKey[bin] + stepAlongB(row);
        while (first < end && m_binKey[first] < center - 1)
            ++first;
        uint last = first;
        while (last < end && m_binKey[last] <= center + 1)
            ++last;
        m_neighbours[bin].set(row, first, last - first);
    }
}

void CandidateGrid::linkNeighbours()
{
    m_neighbours.resize(binCount());
    parallelForEach(static_cast<uint>(m_slotOfSlab.size()), LoopContext::Bound, [this](uint slab) {
        for (uint row = 0; row < kRows; ++row) {
            const std::size_t other = std::size_t{slab} + row / 3 - 1;  // wraps before the first
            if (isSlab(other, std::int64_t{m_slotOfSlab[slab]} + row / 3 - 1))
                linkRow(slab, other, row);
        }
    });
}

CandidateGrid::Neighbours CandidateGrid::neighboursOf(const Place& place) const
{
    Neighbours found = {};
    for (uint row = 0; row < kRows && binCount() > 0; ++row) {
        const std::int64_t slot = std::int64_t{place.a.slot} + row / 3 - 1;
        const std::size_t slab = slabFrom(slot);
        if (!isSlab(slab, slot))
            continue;
        const Key center = keyOf(place.b.slot, place.c.slot) + stepAlongB(row);
        const Key* const keys = m_binKey.data();
        const Key* const end = keys + m_firstBin[slab + 1];
        const Key* const first = std::lower_bound(keys + m_firstBin[slab], end, center - 1);
        const Key* const last = std::upper_bound(first, end, center + 1);
        found.set(row, static_cast<uint>(first - keys), static_cast<uint>(last - first));
    }
    return found;
}

}  // namespace Tessary
