#include "Arrays.h"
#include "Module.h"
#include "Threads.h"
#include "Work.h"

#include <Tessary/Primitives.h>
#include <TessaryMesh/Errors.h>

#include <algorithm>

namespace TessaryPython {
namespace {

using Korvane::Math::float2x3;
using Korvane::Math::float3;
using Korvane::Math::float3x3;

// center, radius
py::tuple boundingSphere(const py::array& points, unsigned threads, const py::object& progress)
{
    const auto positions = borrow<float3>(points, "points");
    const Tessary::Sphere sphere = compute({threads, progress}, positions->size() / 4, [=](Stage&) {
        return Tessary::computeBoundingSphere(*positions);
    });
    return py::make_tuple(moveToNumpy(Pelon::Array<float3>(1, sphere.getCenter()))[py::int_(0)],
                          sphere.getRadius());
}

// One triangle or box stands for as many as there are of the others.
std::size_t pairCount(std::size_t triangles, std::size_t boxes)
{
    if (triangles == boxes || boxes == 1)
        return triangles;
    if (triangles == 1)
        return boxes;
    throw TessaryMesh::ArrayError(TessaryMesh::ArrayError::Code::Length, "boxes",
                                  std::to_string(boxes) + " boxes, where there are " +
                                      std::to_string(triangles) +
                                      " triangles (as many, or one, are wanted)");
}

py::object overlap(const py::array& triangles, const py::array& boxes, unsigned threads,
                   const py::object& progress)
{
    const auto corners = borrow<float3x3>(triangles, "triangles");
    const auto bounds = borrow<float2x3>(boxes, "boxes");
    const std::size_t count = pairCount(corners->size(), bounds->size());
    const std::size_t cornerStep = corners->size() == 1 ? 0 : 1;
    const std::size_t boxStep = bounds->size() == 1 ? 0 : 1;
    return moveToNumpy(compute({threads, progress}, count, [=](Stage&) {
        Pelon::Array<bool> meets(count);
        parallelPieces(count, [&](std::size_t begin, std::size_t end) {
            // What the loop reads is in its hands: a written bool might be any of it.
            const float3x3* const triangle = corners->data();
            const float2x3* const boxOf = bounds->data();
            bool* const out = meets.data();
            const std::size_t next = cornerStep, nextBox = boxStep;
            for (std::size_t i = begin; i < end; ++i) {
                const float3* const p = triangle[i * next].row;
                const float3* const box = boxOf[i * nextBox].row;
                out[i] = Tessary::intersect_triangle_with_axis_aligned_box(p[0], p[1], p[2], box[0],
                                                                           box[1]);
            }
        });
        return meets;
    }));
}

}  // namespace

void definePrimitives(py::module_& module)
{
    using py::arg;
    module.def("bounding_sphere", &boundingSphere, arg("points"), arg("threads"), arg("progress"));
    module.def("overlap", &overlap, arg("triangles"), arg("boxes"), arg("threads"),
               arg("progress"));
}

}  // namespace TessaryPython
