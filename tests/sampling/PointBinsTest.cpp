#include "support/MeshBuilding.h"
#include "support/Threads.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_scan.h>

#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

using namespace TestSupport;
using Korvane::Math::uint3;
using Tessary::CellHash;
using Tessary::LocalPosition;
using Tessary::PointBins;

namespace {

constexpr uint3 kSentinel{0x80000000, 0x80000000, 0x80000000};

using Key = std::tuple<std::int32_t, std::int32_t, std::int32_t, std::uint32_t, std::uint32_t>;

Key keyOf(const LocalPosition& p)
{
    return {static_cast<std::int32_t>(p.cell.x), static_cast<std::int32_t>(p.cell.y),
            static_cast<std::int32_t>(p.cell.z), p.segment, p.index};
}

// Cells around the origin, or of any size; every id differs and says what else the point holds.
std::vector<LocalPosition> randomPoints(std::uint32_t seed, uint count)
{
    std::mt19937 random(seed);
    const auto component = [&random, seed]() -> uint {
        const uint far = seed % 3 == 0 ? random() % 2 * 0x7FFFFFFFu : 0;
        return far + random() % (1 + seed % 6) - seed % 6 / 2;
    };
    std::vector<LocalPosition> points(count);
    for (uint i = 0; i < count; ++i) {
        const uint x = component(), y = component();
        points[i].cell = {x, y, component()};
        if (seed % 4 == 1 && random() % 5 == 0)
            points[i].cell = kSentinel;
        points[i].segment = random() % 3;
        points[i].index = i;
        points[i].local = {static_cast<float>(i), -1, 0.5f};
        points[i].tag = ~i;
    }
    std::shuffle(points.begin(), points.end(), random);
    return points;
}

struct Bins {
    Array<uint3> cells;
    Array<uint> offsets;
};

Bins binsOf(const std::vector<LocalPosition>& sorted)
{
    Bins bins;
    for (uint i = 0; i < sorted.size(); ++i)
        if (sorted[i].cell != (i > 0 ? sorted[i - 1].cell : kSentinel)) {
            bins.cells.push_back(sorted[i].cell);
            bins.offsets.push_back(i);
        }
    if (!bins.cells.empty())
        bins.offsets.push_back(static_cast<uint>(sorted.size()));
    return bins;
}

// Scans in pieces of one point; returns how many cells were emitted.
template <class Emit>
uint scan(const PointBins::Points& points, const Emit& emit)
{
    Tessary::DedupBody<uint3, unsigned int, Tessary::CellOfPoint, Emit> body({&points}, emit);
    const uint count = static_cast<uint>(points.size());
    tbb::parallel_scan(tbb::blocked_range<uint>(0, count, 1), body, tbb::simple_partitioner());
    return body.count();
}

TEST(PointBins, SortPointsAndListEachCellOnce)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const auto points = randomPoints(seed, seed % 10 == 9 ? 30000 : seed * seed % 200);
        auto sorted = points;
        std::sort(sorted.begin(), sorted.end(),
                  [](const auto& a, const auto& b) { return keyOf(a) < keyOf(b); });
        const Bins expected = binsOf(sorted);
        atSeveralThreadCounts([&](int threads) {
            SCOPED_TRACE(threads);
            PointBins bins;
            bins.binCells = {{7, 7, 7}};
            bins.binOffsets = {5, 5, 5};
            bins.cellToBin[{1, 2, 3}] = 4;
            bins.points.assign(points.begin(), points.end());
            bins.sortDedup();
            EXPECT_TRUE(std::equal(
                bins.points.begin(), bins.points.end(), sorted.begin(), sorted.end(),
                [](const auto& a, const auto& b) { return std::memcmp(&a, &b, sizeof a) == 0; }));
            EXPECT_EQ(bins.binCells, expected.cells);
            EXPECT_EQ(bins.binOffsets, expected.offsets);
            EXPECT_EQ(bins.cellToBin.size(), 1u);

            Array<uint3> cells(points.size()), alone(points.size());
            Array<uint> offsets(points.size() + 1, static_cast<uint>(points.size()));
            cells.resize(
                scan(bins.points, Tessary::EmitCellAndOffset{cells.data(), offsets.data()}));
            alone.resize(scan(bins.points, Tessary::EmitCell{alone.data()}));
            offsets.resize(expected.offsets.size());
            EXPECT_EQ(cells, expected.cells);
            EXPECT_EQ(alone, expected.cells);
            EXPECT_EQ(offsets, expected.offsets);
        });
    }
}

TEST(PointBins, HashCellsAsSignedNumbers)
{
    EXPECT_EQ(CellHash()({1, 2, 3}), 0xF4C722623954D5ACu);
    EXPECT_EQ(CellHash()({0u - 1, 0u - 2, 0u - 3}), 0xC697C908C4062208u);
    EXPECT_EQ(CellHash()({0x80000000, 0x7FFFFFFF, 0u - 7}), 0xC6AACC196A1DEAFEu);
}

}  // namespace
