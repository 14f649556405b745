#pragma once

#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <cstddef>

/// What the kernels trust their callers with, asked of arrays from anywhere. All throw ArrayError, which
/// names the array and the first element to blame.
namespace TessaryPython {

using IndexArrayRef = const Pelon::Array<Pelon::uint>&;

/// Offsets of faces: from 0, not falling, up to the number of corners.
void requireOffsets(IndexArrayRef offsets, std::size_t cornerCount, const char* name = "offsets");

/// Indices below `count`, which counts `what` ("points").
void requireBelow(IndexArrayRef indices, std::size_t count, const char* name, const char* what);

/// Pairs of corners, each of which is named at most once; the second of a pair may be 0xFFFFFFFF.
void requireEdgeTable(IndexArrayRef edges, std::size_t cornerCount, const char* name = "edges");

void requireLength(std::size_t length, std::size_t wanted, const char* name, const char* what);

/// The least number of points that corners can name: the largest index and 1.
std::size_t leastPointCount(IndexArrayRef corners);

}  // namespace TessaryPython
