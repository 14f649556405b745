#include <meshio/PlyRows.h>

#include <meshio/ReadFile.h>

#include <algorithm>
#include <cstring>

namespace MeshIo {
namespace Ply {
namespace {

using Pelon::Array;
using Pelon::uint;

// Rows are copied property by property in blocks that stay in the nearest cache.
constexpr std::size_t kRowsPerBlock = 1024;
constexpr std::size_t kBlocksPerPoll = 1024;

/// Consecutive scalars of a row that go to consecutive bytes, or a list.
struct Run {
    std::size_t bytes;  // of the scalars, or of a list's count
    Sink sink;
    const uint* offsets = nullptr;  // of lists
    std::size_t entrySize = 0;
};

bool continues(const Run& run, const Sink& sink)
{
    if (run.offsets)
        return false;
    if (!run.sink.first || !sink.first)
        return run.sink.first == sink.first;
    return run.sink.first + run.bytes == sink.first && run.sink.stride == sink.stride;
}

std::vector<Run> runsOf(const Rows& rows, const std::vector<Sink>& sinks)
{
    std::vector<Run> runs;
    for (std::size_t i = 0; i < sinks.size(); ++i) {
        const Property& property = rows.element->properties[i];
        const std::size_t size = sizeOf(property.type);
        if (property.isList())
            runs.push_back({sizeOf(*property.countType), sinks[i], rows.offsets[i].data(), size});
        else if (!runs.empty() && continues(runs.back(), sinks[i]))
            runs.back().bytes += size;
        else
            runs.push_back({size, sinks[i]});
    }
    return runs;
}

template <std::size_t Bytes>
void copyStrided(const unsigned char* from, std::size_t fromStride, const Sink& to, std::size_t row,
                 std::size_t count)
{
    unsigned char* target = to.first + row * to.stride;
    for (std::size_t i = 0; i < count; ++i, from += fromStride, target += to.stride)
        std::memcpy(target, from, Bytes);
}

void copyStrided(const unsigned char* from, std::size_t fromStride, std::size_t bytes,
                 const Sink& to, std::size_t row, std::size_t count)
{
    switch (bytes) {
        case 1:
            return copyStrided<1>(from, fromStride, to, row, count);
        case 2:
            return copyStrided<2>(from, fromStride, to, row, count);
        case 3:
            return copyStrided<3>(from, fromStride, to, row, count);
        case 4:
            return copyStrided<4>(from, fromStride, to, row, count);
        case 8:
            return copyStrided<8>(from, fromStride, to, row, count);
        case 12:
            return copyStrided<12>(from, fromStride, to, row, count);
        case 16:
            return copyStrided<16>(from, fromStride, to, row, count);
        case 24:
            return copyStrided<24>(from, fromStride, to, row, count);
        default:
            break;
    }
    for (std::size_t i = 0; i < count; ++i)
        std::memcpy(to.first + (row + i) * to.stride, from + i * fromStride, bytes);
}

void copyFixedRows(const Rows& rows, const std::vector<Run>& runs)
{
    std::size_t rowSize = 0;
    for (const Run& run : runs)
        rowSize += run.bytes;
    const std::size_t rowCount = static_cast<std::size_t>(rows.element->count);
    for (std::size_t row = 0; row < rowCount; row += kRowsPerBlock) {
        if (row / kRowsPerBlock % kBlocksPerPoll == 0)
            throwIfCancelled();
        const std::size_t count = std::min(kRowsPerBlock, rowCount - row);
        const unsigned char* from = rows.first + row * rowSize;
        for (const Run& run : runs) {
            if (run.sink.first && run.bytes == rowSize && run.sink.stride == rowSize)
                std::memcpy(run.sink.first + row * rowSize, from, count * rowSize);
            else if (run.sink.first)
                copyStrided(from, rowSize, run.bytes, run.sink, row, count);
            from += run.bytes;
        }
    }
}

/// Copies rows of different sizes: the place of every row of a block is found first, then each
/// property moves all places on by what it took.
class BlockCopy {
public:
    BlockCopy(const Rows& rows, const std::vector<Run>& runs) : m_runs(runs), m_next(rows.first) {}

    void copy(std::size_t row, std::size_t count)
    {
        findPlaces(row, count);
        for (const Run& run : m_runs) {
            if (!run.offsets)
                gatherRun(run, row, count);
            else if (run.entrySize == 4)
                gatherLists<4>(run, row, count);
            else if (run.entrySize == 8)
                gatherLists<8>(run, row, count);
            else if (run.entrySize == 2)
                gatherLists<2>(run, row, count);
            else
                gatherLists<1>(run, row, count);
        }
    }

private:
    void findPlaces(std::size_t row, std::size_t count)
    {
        std::size_t fixed = 0;
        for (const Run& run : m_runs)
            fixed += run.bytes;
        std::fill_n(m_sizes, count, fixed);
        for (const Run& run : m_runs)
            for (std::size_t i = 0; run.offsets && i < count; ++i)
                m_sizes[i] += (run.offsets[row + i + 1] - run.offsets[row + i]) * run.entrySize;
        for (std::size_t i = 0; i < count; ++i) {
            m_places[i] = m_next;
            m_next += m_sizes[i];
        }
    }

    void gatherRun(const Run& run, std::size_t row, std::size_t count)
    {
        if (run.sink.first)
            switch (run.bytes) {
                case 1:
                    gather<1>(run.sink, row, count);
                    break;
                case 4:
                    gather<4>(run.sink, row, count);
                    break;
                case 12:
                    gather<12>(run.sink, row, count);
                    break;
                default:
                    for (std::size_t i = 0; i < count; ++i)
                        std::memcpy(run.sink.first + (row + i) * run.sink.stride, m_places[i],
                                    run.bytes);
            }
        for (std::size_t i = 0; i < count; ++i)
            m_places[i] += run.bytes;
    }

    template <std::size_t Bytes>
    void gather(const Sink& sink, std::size_t row, std::size_t count)
    {
        unsigned char* target = sink.first + row * sink.stride;
        for (std::size_t i = 0; i < count; ++i, target += sink.stride)
            std::memcpy(target, m_places[i], Bytes);
    }

    template <std::size_t Size>
    void gatherLists(const Run& run, std::size_t row, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned char* const from = m_places[i] + run.bytes;
            const std::size_t entries = run.offsets[row + i + 1] - run.offsets[row + i];
            if (run.sink.first)
                copyScalars<Size, false>(run.sink.first + run.offsets[row + i] * Size, from,
                                         entries);
            m_places[i] = from + entries * Size;
        }
    }

    const std::vector<Run>& m_runs;
    const unsigned char* m_next;
    std::size_t m_sizes[kRowsPerBlock];
    const unsigned char* m_places[kRowsPerBlock];
};

void copyVaryingRows(const Rows& rows, const std::vector<Run>& runs)
{
    const std::size_t rowCount = static_cast<std::size_t>(rows.element->count);
    BlockCopy blocks(rows, runs);
    for (std::size_t row = 0; row < rowCount; row += kRowsPerBlock) {
        if (row / kRowsPerBlock % kBlocksPerPoll == 0)
            throwIfCancelled();
        blocks.copy(row, std::min(kRowsPerBlock, rowCount - row));
    }
}

}  // namespace

void copyRows(const Rows& rows, const std::vector<Sink>& sinks)
{
    const std::vector<Run> runs = runsOf(rows, sinks);
    const bool hasLists = std::any_of(runs.begin(), runs.end(),
                                      [](const Run& run) { return run.offsets != nullptr; });
    if (hasLists)
        copyVaryingRows(rows, runs);
    else
        copyFixedRows(rows, runs);
}

void swapScalars(unsigned char* values, std::size_t scalarSize, std::size_t count)
{
    if (scalarSize == 2)
        copyScalars<2, true>(values, values, count);
    else if (scalarSize == 4)
        copyScalars<4, true>(values, values, count);
    else if (scalarSize == 8)
        copyScalars<8, true>(values, values, count);
}

}  // namespace Ply
}  // namespace MeshIo
