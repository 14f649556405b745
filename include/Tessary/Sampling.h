#pragma once

#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/RuntimeServices.h>
#include <Tessary/Api.h>

#include <tbb/blocked_range.h>
#include <tbb/cache_aligned_allocator.h>
#include <tbb/concurrent_unordered_map.h>
#include <tbb/concurrent_vector.h>
#include <tbb/parallel_scan.h>

#include <cstddef>
#include <cstdint>
#include <utility>

/// @file
/// Points over a surface that keep their distance, and the grid that finds near ones.

namespace Tessary {

/// A point in a cell of a uniform grid whose cells are 1 wide, once the point is scaled.
struct LocalPosition {
    uint index;                   ///< of the point in its array
    uint segment;                 ///< of the array among the caller's arrays
    Korvane::Math::float3 local;  ///< the scaled point minus its cell
    Korvane::Math::uint3 cell;    ///< three signed integers in two's complement
    uint tag = 0x8000;            ///< for the caller

    /// Orders points by array, then by place in the array.
    std::uint64_t id() const { return std::uint64_t{segment} << 32 | index; }
};

/// The hash of a cell, for PointBins::cellToBin.
struct CellHash {
    /// The same for equal cells.
    std::size_t operator()(const Korvane::Math::uint3& cell) const noexcept
    {
        constexpr std::uint64_t K = 0x9E3779B97F4A7C15;
        const std::uint64_t x = extended(cell.x);
        const std::uint64_t y = extended(cell.y);
        const std::uint64_t z = extended(cell.z);
        return static_cast<std::size_t>((x * K) ^ (((z * K) ^ (y * K)) * K));
    }

private:
    static std::uint64_t extended(uint component)
    {
        return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(component)});
    }
};

/// Points sorted by the cell of a uniform grid, with one bin per cell that holds a point.
///
/// To use it: fill `points`, call sortDedup(), and fill `cellToBin` if cells are to be looked up.
struct PointBins {
    /// Points, which any number of threads may add to.
    using Points =
        tbb::concurrent_vector<LocalPosition, tbb::cache_aligned_allocator<LocalPosition>>;
    /// A bin for each cell.
    using CellToBin = tbb::concurrent_unordered_map<Korvane::Math::uint3, uint, CellHash>;

    void* userData = nullptr;  ///< for the caller
    Points points;             ///< to be filled by the caller
    Pelon::Array<uint>
        binOffsets;  ///< bin b has points[binOffsets[b]] up to points[binOffsets[b + 1]]
    Pelon::Array<Korvane::Math::uint3> binCells;  ///< the cell of each bin
    CellToBin cellToBin;                          ///< the bin of each cell, kept by the caller

    /// Sorts `points` by cell and lists the cells that occur.
    ///
    /// @pre        `points` are at most 4294967295, and nobody else uses the bins meanwhile
    /// @post       `points` come by cell, then by id(); points of one cell with the same id in any
    ///             order. Cells compare as signed, x before y before z
    /// @post       `binCells` has every cell once, strictly ascending
    /// @post       `binOffsets` has one entry more than binCells, the last one the number of points;
    ///             but no entry at all where there are no bins
    /// @note       The cell of three times -2147483648 is none: where it occurs, its points come first
    ///             and belong to no bin, so binOffsets[0] is their number
    /// @complexity O(n log n) time, parallel; allocates nothing but the two lists; never polls for
    ///             cancellation
    TESSARY_API void sortDedup();
};

/// Body of a parallel scan that lists each run of equal keys in a sequence once, in order.
///
/// What precedes index 0 counts as the key of three times 0x80000000, so that a sequence which begins
/// with that key opens no run.
///
/// @tparam Key    three 32-bit words
/// @tparam Index  of an element of the sequence
/// @tparam KeyOf  maps an index to its key
/// @tparam Emit   is called as emit(n, key, i) for the n-th run, which has this key and begins at index
///                i; runs are emitted once each, concurrently
template <class Key, class Index, class KeyOf, class Emit>
class DedupBody {
public:
    using Range = tbb::blocked_range<Index>;  ///< what tbb::parallel_scan() hands over

    /// A body for a whole sequence.
    DedupBody(KeyOf keyOf, Emit emit) : m_keyOf(std::move(keyOf)), m_emit(std::move(emit)) {}
    /// A body for a part of it.
    DedupBody(DedupBody& other, tbb::split) : m_keyOf(other.m_keyOf), m_emit(other.m_emit) {}

    /// Counts the runs of a range.
    void operator()(const Range& range, tbb::pre_scan_tag)
    {
        visit(range, [](Index, const Key&, Index) {});
    }
    /// Emits the runs of a range.
    void operator()(const Range& range, tbb::final_scan_tag) { visit(range, m_emit); }

    /// Adds the runs before this body's range.
    /// @param[in] left  the body of that range
    void reverse_join(DedupBody& left) { m_count += left.m_count; }
    /// Takes over where another body is.
    /// @param[in] other  the one that saw the end of the sequence
    void assign(DedupBody& other)
    {
        m_previous = other.m_previous;
        m_count = other.m_count;
    }

    /// The number of runs once the scan is over.
    Index count() const { return m_count; }

private:
    static constexpr Key kBeforeFirst{0x80000000u, 0x80000000u, 0x80000000u};

    template <class Visit>
    void visit(const Range& range, const Visit& visitRun)
    {
        m_previous = range.begin() > 0 ? m_keyOf(range.begin() - 1) : kBeforeFirst;
        for (Index i = range.begin(); i != range.end(); ++i) {
            const Key key = m_keyOf(i);
            if (key == m_previous)
                continue;
            m_previous = key;
            visitRun(m_count++, key, i);
        }
    }

    KeyOf m_keyOf;
    Emit m_emit;
    Key m_previous = kBeforeFirst;
    Index m_count = 0;
};

/// The key of a sequence of points: the cell.
struct CellOfPoint {
    const PointBins::Points* points;  ///< the sequence
    /// The cell of point i.
    const Korvane::Math::uint3& operator()(uint i) const { return (*points)[i].cell; }
};

/// Writes the key of each run.
struct EmitCell {
    Korvane::Math::uint3* cells;  ///< one for each run
    /// Writes the key of run n.
    void operator()(uint n, const Korvane::Math::uint3& cell, uint) const { cells[n] = cell; }
};

/// Writes the key of each run, and where it begins.
struct EmitCellAndOffset {
    Korvane::Math::uint3* cells;  ///< one for each run
    uint* offsets;                ///< one for each run
    /// Writes the key of run n, and where it begins.
    void operator()(uint n, const Korvane::Math::uint3& cell, uint begin) const
    {
        cells[n] = cell;
        offsets[n] = begin;
    }
};

extern template class TESSARY_API
    DedupBody<Korvane::Math::uint3, unsigned int, CellOfPoint, EmitCell>;
extern template class TESSARY_API
    DedupBody<Korvane::Math::uint3, unsigned int, CellOfPoint, EmitCellAndOffset>;

/// Scatters points over the surface of a triangle mesh so that no two are closer than a distance.
///
/// Candidates are drawn uniformly over the area, five for each disk of half that distance; each one,
/// in the order of drawing, that has been kept so far removes the later ones within the distance.
/// Distances are measured in cells of that width, so they hold up to rounding. Dart throwing: R. L.
/// Cook, "Stochastic sampling in computer graphics", ACM Transactions on Graphics 5(1), 1986.
///
/// @param[in]  min_distance  in the mesh's units
/// @param[in]  seed          of every random decision: same mesh, distance and seed, same bits, on any
///                           machine, for any number of threads
/// @param[in]  mesh          a triangle mesh: point positions, corners, and a face component of as
///                           many faces as there are triangles. Face offsets are not read, indices
///                           not checked
/// @param[out] out           becomes a point cloud of S samples, grouped by triangle, in the order of
///                           drawing within one. It has the component "sample_component" of S elements
///                           with the properties "weight" (3 S floats: the weights of the triangle's
///                           corners, in order) and "face_id" (S triangle indices), and for the faces
///                           "face_sample_offset" (one entry more than there are faces): the samples
///                           of face f are those from entry f up to entry f + 1. Other properties stay
/// @param[in]  services      gets the errors; may be null
/// @pre        out is not mesh; not checked
/// @failure    where the distance is not above zero, positions or corners are missing, or the corners
///             are not three per face: one error to `services`, and `out` stays as it is. A mesh
///             without points: the same without an error
/// @failure    one point of a triangle that is NaN or infinite, or an area that overflows, leaves no
///             candidates: `out` becomes a point cloud without samples, and nothing is reported
/// @throws std::runtime_error  with the host's text when the job is cancelled; `out` stays as it is
/// @throws std::bad_alloc      for candidates that memory cannot hold; `out` stays as it is. Where memory ends
///                             only as `out` is written, `out` may have some of the properties
/// @note       The candidate drawn first is always kept, removes others, and is then left out. The
///             number of candidates is taken modulo 2^32, and is 0 where the area or the area over the
///             distance's square overflows. At distances up to 1.1754944e-38 nothing is removed
/// @complexity O(triangles + candidates), parallel, at most 120 bytes per candidate; polls for
///             cancellation in each phase, and tells its progress (see Progress.h)
TESSARY_API void poissonSampleTriMesh(float min_distance, unsigned int seed,
                                      const Korvane::Object& mesh, Korvane::Object& out,
                                      const Pelon::RuntimeServices* services);

}  // namespace Tessary
