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

struct Expected {
    std::vector<LocalPosition> points;
    Array<uint3> cells;
    Array<uint> offsets;

    explicit Expected(std::vector<LocalPosition> unsorted) : points(std::move(unsorted))
    {
        std::sort(points.begin(), points.end(),
                  [](const auto& a, const auto& b) { return keyOf(a) < keyOf(b); });
        for (uint i = 0; i < points.size(); ++i)
            if (points[i].cell != (i > 0 ? points[i - 1].cell : kSentinel)) {
                cells.push_back(points[i].cell);
                offsets.push_back(i);
            }
        if (!cells.empty())
            offsets.push_back(static_cast<uint>(points.size()));
    }
};

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
        const Expected expected(points);
        atSeveralThreadCounts([&](int threads) {
            SCOPED_TRACE(threads);
            PointBins bins;
            bins.binCells = {{7, 7, 7}};
            bins.binOffsets = {5, 5, 5};
            bins.cellToBin[{1, 2, 3}] = 4;
            for (const LocalPosition& point : points)
                bins.points.push_back(point);
            bins.sortDedup();
            ASSERT_EQ(bins.points.size(), points.size());
            for (std::size_t i = 0; i < points.size(); ++i)
                ASSERT_EQ(std::memcmp(&bins.points[i], &expected.points[i], sizeof(LocalPosition)),
                          0)
                    << i;
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
    const CellHash hash;
    const auto minus = [](uint a) { return 0 - a; };
    EXPECT_EQ(hash({0, 0, 0}), 0u);
    EXPECT_EQ(hash({1, 0, 0}), 0x9E3779B97F4A7C15u);
    EXPECT_EQ(hash({0, 1, 0}), 0xDF442D22CE4859B9u);
    EXPECT_EQ(hash({minus(1), 0, 0}), 0x61C8864680B583EBu);
    EXPECT_EQ(hash({1, 2, 3}), 0xF4C722623954D5ACu);
    EXPECT_EQ(hash({minus(1), minus(2), minus(3)}), 0xC697C908C4062208u);
    EXPECT_EQ(hash({0x80000000, 0x7FFFFFFF, minus(7)}), 0xC6AACC196A1DEAFEu);
}

}  // namespace
