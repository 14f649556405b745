// Walks around the middle point of a small triangle mesh, from corner to corner.
#include <Tessary/HalfEdge.h>
#include <Tessary/Topology.h>

#include <iostream>

using Pelon::Array;
using Tessary::HalfEdge;
using Tessary::uint;

constexpr uint kNone = 0xFFFFFFFF;

//      2
//    / | \      four triangles around point 0: (0 1 2) (0 2 3) (0 3 4) (0 4 1)
//   3--0--1
//    \ | /
//      4
const Array<uint> corners{0, 1, 2, 0, 2, 3, 0, 3, 4, 0, 4, 1};
constexpr uint pointCount = 5;

int main()
{
    Array<uint> dualOffset(pointCount + 1);  // zeros
    Array<uint> dualCorner(corners.size(), kNone);
    Tessary::constructDualMesh(corners, dualOffset, dualCorner);

    std::cout << "corners at point 0:";
    for (uint i = dualOffset[0]; i < dualOffset[1]; ++i)
        std::cout << ' ' << dualCorner[i];

    // The half-edge that starts at the middle lies opposite to one that ends there; the corner after
    // that one starts at the middle again, in the next triangle.
    std::cout << "\ntriangles around it:";
    HalfEdge edge{0, 0};
    do {
        std::cout << ' ' << edge.face;
        edge = Tessary::findAdjacentHalfEdge(corners, dualOffset, dualCorner, edge);
        if (edge.face == kNone)
            break;  // a boundary
        edge.faceVertex = 3 * edge.face + (edge.faceVertex + 1) % 3;
    } while (edge.face != 0);
    std::cout << '\n';
}
