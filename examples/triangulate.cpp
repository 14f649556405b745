#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>

#include <iostream>

using namespace Korvane;
using Pelon::Array;

int main()
{
    // A unit square of one face, which wears the paint number 7.
    const auto square = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},  // points
                                           {0, 4},                                        // faces
                                           {0, 1, 2, 3});                                 // corners
    const auto paints = Pelon::makeMutable<Array<int>>(1, 7);
    Geometry::addDataGeoProperty<int>(*square, "paint", Geometry::sFaceComp, paints);

    const auto triangles = createObject();
    if (!Tessary::triangulatePolyMesh(*square, {"paint"}, *triangles))
        return 1;
    const auto corners = Geometry::dataArray<Pelon::uint>(*triangles, Geometry::sFaceVertex);
    const auto paint = Geometry::dataArray<int>(*triangles, "paint");
    for (std::size_t t = 0; t < paint->size(); ++t)
        std::cout << "triangle " << (*corners)[3 * t] << ' ' << (*corners)[3 * t + 1] << ' '
                  << (*corners)[3 * t + 2] << ", paint " << (*paint)[t] << '\n';
}
