#pragma once

// How values of a polygon mesh come to the triangles of its fans:
//
//   face values      | A       |     repeatOnTriangles   | A     | A     |
//   corner values    | a b c d |     pickAtCorners       | a b c | a c d |

#include "base/Assert.h"
#include "base/MeshLayout.h"
#include "base/ParallelLoop.h"

namespace Tessary {

/// Runs `body(face, fan)` for every face, in parallel.
template <class Body>
void forEachFan(const Array<uint>& faceOffset, LoopContext context, const Body& body)
{
    if (faceOffset.empty())
        return;
    const uint* const offsets = faceOffset.data();
    parallelForEach(static_cast<uint>(faceOffset.size() - 1), context,
                    [offsets, body](uint face) { body(face, fanOf(offsets, face)); });
}

/// Repeats each face's value on the triangles of its fan. Bound to the caller's job.
template <class T>
void repeatOnTriangles(const Array<uint>& faceOffset, const Array<T>& faceValue,
                       Array<T>& triangleValue)
{
    const T* const in = faceValue.data();
    T* const out = triangleValue.data();
    forEachFan(faceOffset, LoopContext::Bound, [&, in, out](uint face, Fan fan) {
        TESSARY_ASSERT(
            fan.begin == fan.end || (face < faceValue.size() && fan.end <= triangleValue.size()),
            "face " << face << " of " << faceValue.size() << ", triangle " << fan.end << " of "
                    << triangleValue.size());
        for (uint t = fan.begin; t < fan.end; ++t)
            out[t] = in[face];
    });
}

/// Picks, for each triangle corner, the value of the polygon corner that it came from. Bound.
template <class T>
void pickAtCorners(const Array<uint>& faceOffset, const Array<T>& cornerValue,
                   Array<T>& triangleCornerValue)
{
    const T* const in = cornerValue.data();
    T* const out = triangleCornerValue.data();
    forEachFan(faceOffset, LoopContext::Bound, [&, in, out](uint, Fan fan) {
        if (fan.begin == fan.end)
            return;
        TESSARY_ASSERT(
            fan.firstCorner + std::size_t{2} + (fan.end - fan.begin) <= cornerValue.size() &&
                std::size_t{3} * fan.end <= triangleCornerValue.size(),
            "corner " << fan.firstCorner << " of " << cornerValue.size() << ", triangle " << fan.end
                      << " of " << triangleCornerValue.size() / 3);
        const T* corner = in + fan.firstCorner;
        const T& apex = *corner;
        for (std::size_t t = fan.begin; t < fan.end; ++t) {
            ++corner;
            out[3 * t] = apex;
            out[3 * t + 1] = corner[0];
            out[3 * t + 2] = corner[1];
        }
    });
}

}  // namespace Tessary
