#pragma once

#include "peers/PeerInputs.h"

#include <Korvane/Geometry.h>
#include <Tessary/Triangulation.h>

#include <cmath>

namespace Bench {

/// Adds a row on quads and one on mixed polygons for each size.
inline void addPolygonRows(const char* kernel, const char* peer,
                           const std::function<void(Row&, const Polygons&)>& fill,
                           const std::string& suffix = "")
{
    for (const uint size : {100000u, 1000000u}) {
        addRow({kernel, "torus of quads" + suffix, size, 0, peer}, [=](Row& row) {
            fill(row, quadTorus(static_cast<uint>(std::lround(std::sqrt(size)))));
        });
        addRow({kernel, "torus of polygons" + suffix, size, 0, peer},
               [=](Row& row) { fill(row, polygonTorus(size)); });
    }
}

/// computeTriangulation beside a peer; numbers of triangles are compared, the peer's one as it is
/// after the last run.
inline void compareBareTriangles(Row& row, const Polygons& in, const Other& other,
                                 const std::size_t& othersCount)
{
    Array<uint> offset, corners;
    std::size_t ours = 0;
    const Contender kernel{
        [&] { Tessary::computeTriangulation(in.faceOffset, in.faceVertex, offset, corners); },
        nullptr,
        [&] {
            ours = corners.size() / 3;
            offset = {};
            corners = {};
        },
        [&] { return hashOf(corners, hashOf(offset)); }};
    row.compare({in.faceCount(), "polygon", 0, ""}, kernel, other);
    row.expectNear("number of triangles", static_cast<double>(ours),
                   static_cast<double>(othersCount));
}

/// What a peer's triangles are compared by: how many, and the sum of the faces' ids over them.
struct TriangleSummary {
    double count = 0;
    double sumOfIds = 0;
};

/// triangulatePolyMesh beside a peer.
inline void compareTriangleMeshes(Row& row, const Polygons& in, CornerValues cornerValues,
                                  const Other& other, const TriangleSummary& others)
{
    namespace Geometry = Korvane::Geometry;
    const auto source = meshObject(in, cornerValues);
    Array<Pelon::String> names{"normal", "id"};
    if (cornerValues == CornerValues::With)
        names.push_back("uv");
    Pelon::MutablePtr<Korvane::Object> target;
    TriangleSummary ours;
    const auto ids = [&] { return Geometry::dataArray<int>(*target, "id"); };
    const Contender kernel{[&] {
                               target = Korvane::createObject();
                               Tessary::triangulatePolyMesh(*source, names, *target);
                           },
                           nullptr,
                           [&] {
                               ours = {static_cast<double>(ids()->size()), 0};
                               for (const int id : *ids())
                                   ours.sumOfIds += id;
                               target = nullptr;
                           },
                           [&] {
                               const auto corners =
                                   Geometry::dataArray<uint>(*target, Geometry::sFaceVertex);
                               return hashOf(*ids(), hashOf(*corners));
                           }};
    row.compare({in.faceCount(), "polygon", 0, ""}, kernel, other);
    row.expectNear("number of triangles", ours.count, others.count);
    row.expectNear("sum of the triangles' ids", ours.sumOfIds, others.sumOfIds);
}

}  // namespace Bench
