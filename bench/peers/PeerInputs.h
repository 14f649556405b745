#pragma once

// Inputs that meshes with pointers from element to element can hold too, and what all programs
// beside other libraries share.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Math.h>
#include <Korvane/Object.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace Bench {

/// A torus grid of about `quadCount` quads, in which rows of one to three quads are one polygon and
/// some quads are two triangles: a closed manifold mesh of polygons with 3, 4, 6 and 8 corners.
Polygons polygonTorus(uint quadCount);

/// A mesh object of these polygons with the properties "normal" (one float3 per point), "id" (its
/// number for every face) and, if wanted, "uv" (one float2 per corner).
enum class CornerValues { Without, With };
Pelon::MutablePtr<Korvane::Object> meshObject(const Polygons& mesh, CornerValues cornerValues);

/// The value of "uv" at a corner, of "normal" at a point.
Korvane::Math::float2 uvOf(std::size_t corner);
Korvane::Math::float3 normalOf(std::size_t point);

/// A contender that makes something new in each run; the thing is given back outside the timing.
/// `look` sees it before that.
template <class T>
Contender maker(std::function<std::unique_ptr<T>()> make, std::function<void(const T&)> look)
{
    const auto made = std::make_shared<std::unique_ptr<T>>();
    return {[=] { *made = make(); }, nullptr,
            [=] {
                look(**made);
                made->reset();
            }};
}

/// A contender that changes a thing in place: each run gets one of its own, made outside the timing.
template <class T>
Contender changer(std::function<std::unique_ptr<T>()> prepare, std::function<void(T&)> change,
                  std::function<void(const T&)> look)
{
    const auto changed = std::make_shared<std::unique_ptr<T>>();
    return {[=] { change(**changed); }, [=] { *changed = prepare(); },
            [=] {
                look(**changed);
                changed->reset();
            }};
}

/// The points of quadTorus, polygonTorus and triangleTorus, of which there are so many.
Array<Korvane::Math::float3> torusPoints(uint pointCount);

/// Runs `add` before main(), in which the rows are measured.
class RowsOfLibrary {
public:
    explicit RowsOfLibrary(void (*add)()) { add(); }
};

}  // namespace Bench
