#include "Arrays.h"
#include "Module.h"
#include "Requirements.h"
#include "Work.h"

#include <Korvane/Geometry.h>
#include <Tessary/Topology.h>
#include <Tessary/Triangulation.h>
#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>

#include <pybind11/stl.h>

namespace TessaryPython {
namespace {

using Korvane::Math::float3;
using Korvane::Math::uint3;
using Korvane::Math::uint4;
using Pelon::Array;
using TessaryMesh::ArrayError;
using TessaryMesh::Problem;

constexpr uint kNone = 0xFFFFFFFF;

// Moved out of the pair that a kernel filled, as the only holder's.
py::object ours(Array<uint>&& array, std::size_t width = 1)
{
    return moveToNumpy(std::move(array), width);
}

struct Fans {
    Array<uint> offsets, triangles;
};

py::object triangulate(const py::array& offsets, const py::array& corners, unsigned threads)
{
    const auto faceOffset = borrow<uint>(offsets, "offsets");
    const auto faceVertex = borrow<uint>(corners, "corners");
    auto fans = compute({threads, py::none()}, faceVertex->size(), [=](Stage&) {
        requireOffsets(*faceOffset, faceVertex->size());
        Fans made;
        if (!Tessary::computeTriangulation(*faceOffset, *faceVertex, made.offsets, made.triangles))
            throw ArrayError(ArrayError::Code::Value, "offsets",
                             "a face has fewer than three corners, after triangle " +
                                 std::to_string(made.triangles.size() / 3));
        return made;
    });
    return ours(std::move(fans.triangles), 3);
}

// Where there is no edge table: says which edges are to blame.
[[noreturn]] void throwSameDirection(const ArrayPtr<uint>& corners)
{
    const std::size_t pointCount = leastPointCount(*corners);
    if (pointCount <= 64 * corners->size()) {
        const auto mesh =
            TessaryMesh::makeMesh(Array<float3>(pointCount), TessaryMesh::View<uint>(corners),
                                  TessaryMesh::Faces::triangles());
        for (Problem& problem : TessaryMesh::edgeWarnings(*mesh))
            if (problem.code == "same-direction") {
                problem.severity = Problem::Severity::Error;
                throw TessaryMesh::InvalidMesh(std::move(problem));
            }
    }
    throw ArrayError(ArrayError::Code::Value, "corners",
                     "triangles run along an edge in one direction, so there is no edge table");
}

py::object edges(const py::array& corners, unsigned threads)
{
    const auto faceVertex = borrow<uint>(corners, "corners");
    return ours(compute({threads, py::none()}, 2 * faceVertex->size(),
                        [=](Stage&) {
                            Array<uint> made;
                            Tessary::computeTriEdges(*faceVertex, made);
                            if (made.empty() && !faceVertex->empty())
                                throwSameDirection(faceVertex);
                            return made;
                        }),
                2);
}

struct Dual {
    Array<uint> offsets, corners;
};

Dual makeDual(const Array<uint>& faceVertex, std::size_t pointCount)
{
    Dual dual{Array<uint>(pointCount + 1), Array<uint>(faceVertex.size(), kNone)};
    Tessary::constructDualMesh(faceVertex, dual.offsets, dual.corners);
    return dual;
}

std::size_t pointCountFor(const Array<uint>& corners, const std::optional<std::size_t>& count)
{
    if (!count)
        return leastPointCount(corners);
    requireBelow(corners, *count, "corners", "points");
    return *count;
}

py::tuple dual(const py::array& corners, const std::optional<std::size_t>& pointCount,
               unsigned threads)
{
    const auto faceVertex = borrow<uint>(corners, "corners");
    Dual made = compute({threads, py::none()}, faceVertex->size(), [=](Stage&) {
        return makeDual(*faceVertex, pointCountFor(*faceVertex, pointCount));
    });
    return py::make_tuple(ours(std::move(made.offsets)), ours(std::move(made.corners)));
}

py::object adjacency(const py::array& corners, const std::optional<std::size_t>& pointCount,
                     unsigned threads)
{
    const auto faceVertex = borrow<uint>(corners, "corners");
    return ours(
        compute({threads, py::none()}, 2 * faceVertex->size(),
                [=](Stage&) {
                    const Dual made = makeDual(*faceVertex, pointCountFor(*faceVertex, pointCount));
                    Array<uint> adjacent;
                    Tessary::populateAdjacentTri(*faceVertex, made.offsets, made.corners, adjacent);
                    return adjacent;
                }),
        3);
}

py::object adjacencyByDual(const py::array& corners, const py::array& dualOffsets,
                           const py::array& dualCorners, unsigned threads)
{
    const auto faceVertex = borrow<uint>(corners, "corners");
    const auto offsets = borrow<uint>(dualOffsets, "dual_offsets");
    const auto lists = borrow<uint>(dualCorners, "dual_corners");
    return ours(compute({threads, py::none()}, 2 * faceVertex->size(),
                        [=](Stage&) {
                            requireOffsets(*offsets, lists->size(), "dual_offsets");
                            requireBelow(*lists, faceVertex->size(), "dual_corners", "corners");
                            requireBelow(*faceVertex, offsets->size() - 1, "corners", "points");
                            Array<uint> adjacent;
                            Tessary::populateAdjacentTri(*faceVertex, *offsets, *lists, adjacent);
                            return adjacent;
                        }),
                3);
}

struct Quads {
    Array<uint> faceVertex;
    uint next;
};

py::tuple quads(const py::array& corners, const py::array& edgeTable, const py::array& creased,
                uint firstIndex, unsigned threads)
{
    const auto faceVertex = borrow<uint>(corners, "corners");
    const auto table = borrow<uint>(edgeTable, "edges");
    const auto creases = borrow<bool>(creased, "creased");
    Quads made = compute({threads, py::none()}, 2 * faceVertex->size(), [=](Stage&) {
        requireEdgeTable(*table, faceVertex->size());
        requireLength(creases->size(), faceVertex->size(), "creased", "corners");
        Quads quadMesh{};
        quadMesh.next = Tessary::computeQuadMesh(*faceVertex, *table, *creases, firstIndex,
                                                 quadMesh.faceVertex);
        return quadMesh;
    });
    return py::make_tuple(ours(std::move(made.faceVertex), 4), made.next);
}

py::object quadFaceValues(const py::array& offsets, const py::array& values, unsigned threads)
{
    const auto faceOffset = borrow<uint>(offsets, "offsets");
    const auto faceValues = borrow<uint>(values, "values");
    return ours(compute({threads, py::none()}, faceValues->size(), [=](Stage&) {
        const uint cornerCount = faceOffset->empty() ? 0 : (*faceOffset)[faceOffset->size() - 1];
        requireOffsets(*faceOffset, cornerCount);
        requireLength(faceValues->size(), faceOffset->size() - 1, "values", "faces");
        std::size_t triangles = 0;
        for (std::size_t f = 1; f < faceOffset->size(); ++f) {
            const uint size = (*faceOffset)[f] - (*faceOffset)[f - 1];
            if (size < 3)
                throw ArrayError(ArrayError::Code::Value, "offsets",
                                 "face " + std::to_string(f - 1) + " has " + std::to_string(size) +
                                     " corners, where three are the least",
                                 f, std::to_string((*faceOffset)[f]));
            triangles += size - 2;
        }
        Array<uint> repeated(3 * triangles);
        Tessary::quadFaceIndexedInterpolation(*faceOffset, *faceValues, repeated);
        return repeated;
    }));
}

}  // namespace

void definePlainArrays(py::module_& module)
{
    using py::arg;
    const auto threads = arg("threads");
    module.def("array_triangulate", &triangulate, arg("offsets"), arg("corners"), threads);
    module.def("array_edges", &edges, arg("corners"), threads);
    module.def("array_dual", &dual, arg("corners"), arg("point_count"), threads);
    module.def("array_adjacency", &adjacency, arg("corners"), arg("point_count"), threads);
    module.def("array_adjacency_by_dual", &adjacencyByDual, arg("corners"), arg("dual_offsets"),
               arg("dual_corners"), threads);
    module.def("array_quads", &quads, arg("corners"), arg("edges"), arg("creased"),
               arg("first_index"), threads);
    module.def("array_quad_face_values", &quadFaceValues, arg("offsets"), arg("values"), threads);
}

}  // namespace TessaryPython
