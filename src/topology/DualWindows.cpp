#include "base/ParallelLoop.h"
#include "topology/DualLists.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

//   corners     | piece 0          | piece 1          |      a thread each
//   points      | 0 1 .. 4 5 . 4 . | 5 6 . 5 .. 9 . 0 |      the 0 is a stray of piece 1
//   windows     | 0 .. 4           | 5 .. 9           |
//
// A piece counts and lists the corners of its own window of points, in cursors that no other thread
// writes. The few others, strays, are listed by the piece whose window they are in, before its own
// corners or after them, so that every list is in order.

namespace Tessary {
namespace {

// Strays are told apart in chunks: one without any is counted and listed without looking.
constexpr std::size_t kChunk = 4096;

struct Window {
    uint begin;
    uint size;

    bool has(uint point) const { return point - begin < size; }
};

struct Piece {
    Range corners;
    Window window;
    std::vector<char> hasStrays;  // of each chunk
    std::vector<uint> strays;
};

// Calls `visit(chunk, corners)` for every chunk of a piece.
template <class Visit>
void forEachChunk(const Piece& piece, const Visit& visit)
{
    const auto [begin, end] = piece.corners;
    for (std::size_t chunk = 0; begin + chunk * kChunk < end; ++chunk)
        visit(chunk, Range{begin + chunk * kChunk, std::min(begin + (chunk + 1) * kChunk, end)});
}

uint pieceCountFor(std::size_t cornerCount)
{
    constexpr std::size_t kCornersPerPiece = 65536;
    const std::size_t most = std::max<std::size_t>(2, cornerCount / kCornersPerPiece);
    return static_cast<uint>(std::clamp<std::size_t>(loopConcurrency(), 2, most));
}

// The point in the middle of those named around a corner.
uint typicalPoint(const DualLists& lists, std::size_t corner)
{
    constexpr std::size_t kHalf = 16;
    const std::size_t begin = corner > kHalf ? corner - kHalf : 0;
    const std::size_t end = std::min(begin + 2 * kHalf + 1, lists.cornerCount);
    std::vector<uint> points(lists.faceVertex + begin, lists.faceVertex + end);
    const auto middle = points.begin() + static_cast<std::ptrdiff_t>(points.size() / 2);
    std::nth_element(points.begin(), middle, points.end());
    return *middle;
}

// Pieces of nearly equal size; none where their windows are not in order.
std::vector<Piece> piecesOf(const DualLists& lists)
{
    const uint count = pieceCountFor(lists.cornerCount);
    std::vector<uint> begins{0};
    for (uint i = 1; i < count; ++i)
        begins.push_back(typicalPoint(lists, partOf(lists.cornerCount, i, count).begin));
    begins.push_back(static_cast<uint>(lists.pointCount));
    if (!std::is_sorted(begins.begin(), begins.end()))
        return {};
    std::vector<Piece> pieces(count);
    for (uint i = 0; i < count; ++i) {
        pieces[i].corners = partOf(lists.cornerCount, i, count);
        pieces[i].window = {begins[i], begins[i + 1] - begins[i]};
    }
    return pieces;
}

bool areInside(Window window, const uint* points, Range corners)
{
    uint strays = 0;  // no bool: compilers vectorise this one
    for (std::size_t corner = corners.begin; corner < corners.end; ++corner)
        strays |= window.has(points[corner]) ? 0u : 1u;
    return strays == 0;
}

// Returns whether the slots with the numbers of the piece's corners are free.
bool countPiece(const DualLists& lists, Piece& piece)
{
    const Window window = piece.window;
    const uint* const points = lists.faceVertex;
    piece.hasStrays.resize((piece.corners.end - piece.corners.begin) / kChunk + 1);
    bool areFree = true;
    forEachChunk(piece, [&](std::size_t chunk, Range corners) {
        piece.hasStrays[chunk] = areInside(window, points, corners) ? 0 : 1;
        if (!piece.hasStrays[chunk])
            areFree &= countAndProve(lists, corners);
        else
            areFree &= visitAndProve(lists, corners, [&](std::size_t corner, uint point) {
                if (window.has(point))
                    ++lists.cursors[point];
                else
                    piece.strays.push_back(static_cast<uint>(corner));
            });
    });
    return areFree;
}

// Calls `visit(corner, point)` for the strays of `from` in a window.
template <class Visit>
void forEachStray(const DualLists& lists, const Piece& from, Window window, const Visit& visit)
{
    for (const uint corner : from.strays)
        if (window.has(lists.faceVertex[corner]))
            visit(corner, lists.faceVertex[corner]);
}

// Returns how many corners there are in a piece's window, with the strays of others.
uint countStrays(const DualLists& lists, const std::vector<Piece>& pieces, uint i)
{
    const Window window = pieces[i].window;
    for (const Piece& other : pieces)
        forEachStray(lists, other, window, [&](uint, uint point) { ++lists.cursors[point]; });
    const uint* const counts = lists.cursors + window.begin;
    return std::accumulate(counts, counts + window.size, 0u);
}

void listPiece(const DualLists& lists, const Piece& piece)
{
    const Window window = piece.window;
    forEachChunk(piece, [&](std::size_t chunk, Range corners) {
        if (!piece.hasStrays[chunk])
            return listCorners(lists, corners);
        for (std::size_t corner = corners.begin; corner < corners.end; ++corner)
            if (window.has(lists.faceVertex[corner]))
                lists.slots[lists.cursors[lists.faceVertex[corner]]++] = static_cast<uint>(corner);
    });
}

void listWindow(const DualLists& lists, const std::vector<Piece>& pieces, uint i, uint firstSlot)
{
    const Window window = pieces[i].window;
    uint sum = firstSlot;
    for (uint point = window.begin; point < window.begin + window.size; ++point)
        sum += std::exchange(lists.cursors[point], sum);
    const auto listStrays = [&](const Piece& other) {
        forEachStray(lists, other, window, [&](uint corner, uint point) {
            lists.slots[lists.cursors[point]++] = corner;
        });
    };
    for (uint other = 0; other < i; ++other)
        listStrays(pieces[other]);
    listPiece(lists, pieces[i]);
    for (uint other = i + 1; other < pieces.size(); ++other)
        listStrays(pieces[other]);
}

}  // namespace

bool isInPointOrder(const DualLists& lists)
{
    constexpr std::size_t kSamples = 512;
    std::size_t strays = 0;
    std::size_t samples = 0;
    for (const Piece& piece : piecesOf(lists)) {
        const std::size_t step =
            lists.cornerCount / (3 * kSamples) * 3 + 1;  // any corner of triangles
        for (std::size_t corner = piece.corners.begin; corner < piece.corners.end; corner += step) {
            strays += !piece.window.has(lists.faceVertex[corner]);
            ++samples;
        }
    }
    return samples > 0 && 16 * strays <= samples;
}

bool listInWindows(const DualLists& lists)
{
    std::vector<Piece> pieces = piecesOf(lists);
    const auto count = static_cast<uint>(pieces.size());
    std::vector<char> areFree(count);
    parallelForEachPiece(count, LoopContext::Isolated,
                         [&](uint i) { areFree[i] = countPiece(lists, pieces[i]) ? 1 : 0; });
    if (std::find(areFree.begin(), areFree.end(), 0) != areFree.end()) {
        std::fill_n(lists.cursors, lists.pointCount, 0u);
        return false;
    }
    std::vector<uint> firstSlot(count);
    parallelForEachPiece(count, LoopContext::Isolated,
                         [&](uint i) { firstSlot[i] = countStrays(lists, pieces, i); });
    exclusiveScan(firstSlot.data(), count);
    parallelForEachPiece(count, LoopContext::Isolated,
                         [&](uint i) { listWindow(lists, pieces, i, firstSlot[i]); });
    return true;
}

}  // namespace Tessary
