#include "files/ply/PlyRows.h"

#include "base/Host.h"
#include "base/ParallelBlocks.h"
#include "files/ply/PlyBytes.h"

#include <algorithm>
#include <cstring>

namespace TessaryMesh::Ply {
namespace {

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

// Calls `f` with a number of bytes, which is a constant where it is a common one.
template <class F>
void withRunSize(std::size_t bytes, const F& f)
{
    switch (bytes) {
        case 3:
            return f(Bytes<3>());
        case 12:
            return f(Bytes<12>());
        case 16:
            return f(Bytes<16>());
        case 24:
            return f(Bytes<24>());
        case 1:
        case 2:
        case 4:
        case 8:
            return withScalarSize(bytes, f);
        default:
            return f(bytes);
    }
}

// Copies a run of each row of a block, which is found at `from(i)`.
template <class From>
void copyRun(const Run& run, std::size_t row, std::size_t count, const From& from)
{
    const std::size_t stride = run.sink.stride;
    unsigned char* const first = run.sink.first + row * stride;
    withRunSize(run.bytes, [&](auto bytes) {
        unsigned char* target = first;
        for (std::size_t i = 0; i < count; ++i, target += stride)
            std::memcpy(target, from(i), bytes);
    });
}

// `first` is where row `begin` lies.
void copyFixedRows(const std::vector<Run>& runs, const unsigned char* first, std::size_t begin,
                   std::size_t end)
{
    std::size_t rowSize = 0;
    for (const Run& run : runs)
        rowSize += run.bytes;
    forEachFewRows(begin, end, [&, rowSize](std::size_t row, std::size_t count) {
        const unsigned char* from = first + (row - begin) * rowSize;
        for (const Run& run : runs) {
            if (run.sink.first && run.bytes == rowSize && run.sink.stride == rowSize)
                std::memcpy(run.sink.first + row * rowSize, from, count * rowSize);
            else if (run.sink.first)
                copyRun(run, row, count, [=](std::size_t i) { return from + i * rowSize; });
            from += run.bytes;
        }
    });
}

/// Copies rows of different sizes: the place of every row of a block is found first, then each
/// property moves all places on by what it took.
class BlockCopy {
public:
    BlockCopy(const std::vector<Run>& runs, const unsigned char* first)
        : m_runs(runs), m_next(first)
    {}

    void copy(std::size_t row, std::size_t count)
    {
        findPlaces(row, count);
        for (const Run& run : m_runs) {
            if (run.offsets)
                withScalarSize(run.entrySize, [&](auto size) { copyLists<size>(run, row, count); });
            else
                copyScalars(run, row, count);
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

    void copyScalars(const Run& run, std::size_t row, std::size_t count)
    {
        if (run.sink.first)
            copyRun(run, row, count, [this](std::size_t i) { return m_places[i]; });
        for (std::size_t i = 0; i < count; ++i)
            m_places[i] += run.bytes;
    }

    template <std::size_t Size>
    void copyLists(const Run& run, std::size_t row, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned char* const from = m_places[i] + run.bytes;
            const std::size_t entries = run.offsets[row + i + 1] - run.offsets[row + i];
            if (run.sink.first)
                Ply::copyScalars<Size, false>(run.sink.first + run.offsets[row + i] * Size, from,
                                              entries);
            m_places[i] = from + entries * Size;
        }
    }

    const std::vector<Run>& m_runs;
    const unsigned char* m_next;
    std::size_t m_sizes[kRowsPerBlock];
    const unsigned char* m_places[kRowsPerBlock];
};

void copyVaryingRows(const std::vector<Run>& runs, const unsigned char* first, std::size_t begin,
                     std::size_t end)
{
    BlockCopy blocks(runs, first);
    forEachFewRows(begin, end,
                   [&blocks](std::size_t row, std::size_t count) { blocks.copy(row, count); });
}

}  // namespace

void copyRows(const Rows& rows, const std::vector<Sink>& sinks)
{
    const std::vector<Run> runs = runsOf(rows, sinks);
    const bool hasLists = std::any_of(runs.begin(), runs.end(),
                                      [](const Run& run) { return run.offsets != nullptr; });
    const auto copy = hasLists ? copyVaryingRows : copyFixedRows;
    forEachBlock(rows.pieces.size(), [&](std::size_t piece) {
        const std::size_t begin = piece * kRowsPerPiece;
        copy(runs, rows.pieces[piece], begin, std::min(begin + kRowsPerPiece, rows.count()));
    });
}

}  // namespace TessaryMesh::Ply
