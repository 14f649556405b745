#pragma once

// Plain ways to do what the topology kernels do, to measure these against.

#include "support/Inputs.h"

namespace Bench {

inline constexpr uint kNone = 0xFFFFFFFF;

struct Dual {
    Array<uint> offset;
    Array<uint> corners;

    explicit Dual(const Triangles& mesh);

    /// Zeros and free slots, as constructDualMesh expects them.
    void prepare();

    /// Gives the storage back; prepare() gets new one.
    void release();

private:
    std::size_t m_pointCount;
    std::size_t m_cornerCount;
};

/// A counting sort with the offsets as cursors, which are shifted back, serial.
void countingSortDual(const Array<uint>& faceVertex, Dual& dual);

/// Half-edges bucketed by larger point by a counting sort, each bucket sorted and paired, serial.
/// For manifold, consistently oriented meshes.
void countingSortEdges(const Array<uint>& faceVertex, Array<uint>& triEdges);

/// The quads of a mesh without creases, serial.
void smoothQuads(const Array<uint>& faceVertex, const Array<uint>& triEdges, uint firstIndex,
                 Array<uint>& quadFaceVertex);

/// Adjacent triangles by walking the shorter of the two points' lists, with software prefetch, on two
/// threads from kWorthAThread triangles on. For manifold meshes without degenerate triangles.
void walkShorterLists(const Array<uint>& faceVertex, const Dual& dual, Array<uint>& adjacentTri);

}  // namespace Bench
