#pragma once

#include "peers/PeerInputs.h"

#include <Tessary/Topology.h>

namespace Bench {

/// A library whose mesh of triangles finds the edges.
template <class Mesh>
struct EdgeFinder {
    const char* name;
    const char* difference;
    uint largest;  ///< triangles, of which it is still done in a few seconds

    /// Converts the input, and returns what makes the mesh of that.
    std::function<std::function<std::unique_ptr<Mesh>()>(const Triangles&)> prepare;
    std::size_t (*edgeCount)(const Mesh&);

    /// Whether a fan is done in a few seconds too: some walk around a point for every triangle there.
    bool isFastOnFans = false;
};

template <class Mesh>
void fillEdgeRow(Row& row, const EdgeFinder<Mesh>& peer, const Triangles& in)
{
    Array<uint> edges;
    std::size_t ours = 0, others = 0;
    const Contender kernel{[&] { Tessary::computeTriEdges(in.faceVertex, edges); }, nullptr,
                           [&] {
                               ours = edges.size() / 2;
                               edges = {};
                           },
                           [&] { return hashOf(edges); }};
    const Contender other =
        maker<Mesh>(peer.prepare(in), [&](const Mesh& mesh) { others = peer.edgeCount(mesh); });
    row.compare({in.triangleCount(), "triangle", 0, ""}, kernel,
                {peer.name, other, peer.difference});
    row.expectNear("number of edges", static_cast<double>(ours), static_cast<double>(others));
}

/// Adds computeTriEdges beside the peer on tori and a fan. Numbers of edges are compared.
template <class Mesh>
void addEdgeRows(const EdgeFinder<Mesh>& peer)
{
    for (const uint size : {100000u, 1000000u, 8000000u})
        for (const PointOrder order : {PointOrder::Natural, PointOrder::Random})
            if (size <= peer.largest)
                addRow({"computeTriEdges",
                        order == PointOrder::Natural ? "torus natural" : "torus random", size, 0,
                        peer.name},
                       [=](Row& row) { fillEdgeRow(row, peer, triangleTorus(size, order)); });
    if (peer.isFastOnFans)
        addRow({"computeTriEdges", "fan", 200000, 0, peer.name},
               [=](Row& row) { fillEdgeRow(row, peer, triangleFan(200000)); });
}

/// Makes a mesh that has add_vertex and add_face, with room reserved for a closed one.
template <class Mesh, class Point, class Handle>
std::unique_ptr<Mesh> meshByAddFace(const Triangles& in)
{
    auto mesh = std::make_unique<Mesh>();
    mesh->reserve(in.pointCount, in.pointCount + in.triangleCount(), in.triangleCount());
    for (uint p = 0; p < in.pointCount; ++p)
        mesh->add_vertex(Point(0, 0, 0));
    const auto point = [&](std::size_t corner) {
        return Handle(static_cast<int>(in.faceVertex[corner]));
    };
    for (std::size_t c = 0; c < in.faceVertex.size(); c += 3)
        mesh->add_face(point(c), point(c + 1), point(c + 2));
    return mesh;
}

}  // namespace Bench
