#include "base/CountingSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace Tessary;

TEST(CountingSort, IsAStableSortHoweverManyPiecesAndBinsThereAre)
{
    std::mt19937 random(1);
    for (const std::size_t binCount : {1u, 3u, 4096u, 10000u})
        for (const uint pieceCount : {1u, 2u, 7u}) {
            std::vector<uint> bins(20000);
            for (uint& bin : bins)
                bin = static_cast<uint>(random() % binCount);
            CountingSort sort(pieceCount, binCount);
            std::vector<uint> sorted(bins.size());
            const auto forEachItem = [&](const auto& visit) {
                for (uint piece = 0; piece < pieceCount; ++piece)
                    for (auto [i, end] = partOf(bins.size(), piece, pieceCount); i < end; ++i)
                        visit(sort.counters(piece)[bins[i]], static_cast<uint>(i));
            };
            forEachItem([](uint& count, uint) { ++count; });
            EXPECT_EQ(sort.exclusiveScan(), bins.size());
            forEachItem([&](uint& cursor, uint item) { sorted[cursor++] = item; });

            std::vector<uint> expected(bins.size());
            for (uint i = 0; i < expected.size(); ++i)
                expected[i] = i;
            std::stable_sort(expected.begin(), expected.end(),
                             [&](uint a, uint b) { return bins[a] < bins[b]; });
            EXPECT_EQ(sorted, expected) << binCount << " bins, " << pieceCount << " pieces";
            EXPECT_EQ(sort.binEnds()[binCount - 1], bins.size());
        }
    EXPECT_EQ(CountingSort(3, 0).exclusiveScan(), 0u);
}
