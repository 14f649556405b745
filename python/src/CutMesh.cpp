#include "Geometry.h"
#include "Module.h"
#include "Requirements.h"
#include "Work.h"

#include <Korvane/Geometry.h>
#include <Tessary/CutMesh.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
#include <TessaryMesh/Errors.h>

namespace TessaryPython {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using TessaryMesh::ArrayError;

/// Where the points of a cut mesh lie on the triangles of its source.
struct Cuts {
    ArrayPtr<float> triangleWeights, edgeWeights;
    ArrayPtr<uint> pointIds, pointOrigins;
};

// The fan triangles of a mesh and their dual table, which the kernel looks neighbours up in.
Pelon::MutablePtr<Object> fansOf(const Object& mesh)
{
    auto fans = Korvane::createObject();
    Tessary::triangulatePolyMesh(mesh, {}, *fans);
    Tessary::addDual(*fans, sPointComp, sFaceVertex, "dual_component", "dual_face_vertex",
                     "dual_face_offset");
    return fans;
}

void requireOrigins(const Pelon::Array<uint>& origins, std::size_t cornerCount)
{
    for (std::size_t i = 0; i < origins.size(); ++i)
        if (origins[i] >> 2 >= cornerCount)
            throw ArrayError(ArrayError::Code::Value, "cut_point_origins",
                             "entry " + std::to_string(i) + " is of corner " +
                                 std::to_string(origins[i] >> 2) + ", where the triangles have " +
                                 std::to_string(cornerCount),
                             i, std::to_string(origins[i]));
}

void requireFit(const Cuts& cuts, const Object& fans, const Object& target)
{
    const std::size_t corners = getElementCount(fans, sFaceVertexComp);
    requireLength(cuts.triangleWeights->size(), corners, "triangle_weights",
                  "corners of triangles");
    requireLength(cuts.edgeWeights->size(), corners, "edge_weights", "corners of triangles");
    requireLength(getElementCount(target, sFaceVertexComp), 4 * corners, "target",
                  "corners of quads, three for each triangle");
    requireLength(getElementCount(target, sFaceComp), corners, "target",
                  "quads, three for each triangle");
    requireLength(cuts.pointIds->size(), getElementCount(target, sPointComp), "cut_point_ids",
                  "points of the target");
    requireBelow(*cuts.pointIds, cuts.pointOrigins->size(), "cut_point_ids", "cut points");
    requireOrigins(*cuts.pointOrigins, corners);
}

Geometry interpolate(const Geometry& source, const py::array& triangleWeights,
                     const py::array& edgeWeights, const py::array& pointIds,
                     const py::array& pointOrigins, const Geometry& target, unsigned threads,
                     const py::object& progress)
{
    const Cuts cuts{borrow<float>(triangleWeights, "triangle_weights"),
                    borrow<float>(edgeWeights, "edge_weights"),
                    borrow<uint>(pointIds, "cut_point_ids"),
                    borrow<uint>(pointOrigins, "cut_point_origins")};
    const std::size_t effort = 10 * (source.cornerCount() + target.cornerCount());
    auto made = compute({threads, progress}, effort,
                        [cuts, from = Geometry(source), to = Geometry(target)](Stage& stage) {
                            stage.next(20);
                            from.requireValid();
                            to.requireValid();
                            const auto fans = fansOf(*from.object());
                            requireFit(cuts, *fans, *to.object());
                            stage.next(100);
                            auto result = Pelon::makeMutable<Object>(*to.object());
                            Tessary::interpolatePropertiesToCutMesh(
                                *from.object(), *cuts.triangleWeights, *cuts.edgeWeights, *fans,
                                *cuts.pointIds, *cuts.pointOrigins, *result);
                            return result;
                        });
    return {std::move(made), target.trust() == Geometry::Trust::Changeable
                                 ? Geometry::Trust::Changeable
                                 : source.resultTrust()};
}

}  // namespace

void defineCutMesh(py::module_& module)
{
    using py::arg;
    module.def("interpolate_to_cut_mesh", &interpolate, arg("source"), arg("triangle_weights"),
               arg("edge_weights"), arg("cut_point_ids"), arg("cut_point_origins"), arg("target"),
               arg("threads"), arg("progress"));
}

}  // namespace TessaryPython
