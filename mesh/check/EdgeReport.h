#pragma once

#include "base/Host.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TessaryMesh {

/// Two triangles that run along one edge in the same direction.
struct SameDirection {
    uint start, end;       ///< the points that both half-edges lead from and to
    uint corner, another;  ///< where the half-edges start, the smaller corner first
};

/// The edges for which computeTriEdges makes no table.
struct EdgeReport {
    std::uint64_t count = 0;
    std::vector<SameDirection> first;  ///< the first few, by larger and then smaller point
};

/// Finds the edges that computeTriEdges gives up on, without its message: those of which two
/// half-edges that follow each other in corner order run the same way, an opposite pair before them
/// aside.
///
/// in     triFaceVertex  3 point indices per triangle, all below pointCount
/// in     most           how many edges to describe; all are counted
/// cost   O(n) time but for long lists of one point's corners, which are sorted. Throws
///        std::runtime_error when the caller's job is cancelled
EdgeReport findSameDirectionEdges(const Array<uint>& triFaceVertex, std::size_t pointCount,
                                  std::size_t most = 5);

/// Throws InvalidMesh, with the first places in words of the polygon mesh, where there are such
/// edges.
///
/// in     faceOffset     face count + 1 offsets of the polygon mesh
/// in     report         what findSameDirectionEdges said about its fan triangles
void rejectSameDirection(const Array<uint>& faceOffset, const EdgeReport& report);

/// The edge table of computeTriEdges for any mesh: half-edges that follow each other in one direction
/// are listed as boundaries, each by itself.
Array<uint> separatedTriEdges(const Array<uint>& triFaceVertex, std::size_t pointCount);

}  // namespace TessaryMesh
