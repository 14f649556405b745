#pragma once

#include <Pelon/Array.h>
#include <Pelon/TypeRep.h>

#include <cstddef>

namespace MeshIo {

/// For each corner a number that it shares with the corners of the same point and the same index: a
/// mesh of these numbers in the place of points comes apart along the index seams. Counts up from 0
/// by point, then index. Near linear time.
struct SeamCorners {
    Pelon::Array<Pelon::uint> number;
    Pelon::uint count = 0;
};

SeamCorners seamCorners(const Pelon::Array<Pelon::uint>& faceVertex, std::size_t pointCount,
                        const Pelon::Array<Pelon::uint>& indices);

}  // namespace MeshIo
