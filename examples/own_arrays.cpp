// Triangles and samples of a mesh that stands in vectors of your own.
#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Operations.h>

#include <iostream>
#include <vector>

using namespace TessaryMesh;

int main()
{
    // A unit square of one face, with a texture coordinate at each corner. Nothing is copied.
    const std::vector<float> points{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    const std::vector<int> corners{0, 1, 2, 3};
    const std::vector<float> uvs{0, 0, 1, 0, 1, 1, 0, 1};
    const auto square = makeMesh(points, corners, Faces::quads());
    addAttribute(*square, kTexcoord, Component::Corner, uvs, 2);

    const auto triangles = triangulate(*square);
    const auto uv = view<Korvane::Math::float2>(*triangles.mesh, kTexcoord);
    const auto& face = *triangles.parents.face;
    for (std::size_t t = 0; t < face.size(); ++t)
        std::cout << "triangle of face " << face[t] << ", from " << uv[3 * t].x << ' '
                  << uv[3 * t].y << " to " << uv[3 * t + 2].x << ' ' << uv[3 * t + 2].y << '\n';

    SampleOptions options;
    options.distance = 0.1f;
    const auto samples = sample(*triangles.mesh, options);
    const auto places = pointsOf(*samples.mesh);  // pointer and count: places.data(), places.size()
    std::cout << places.size() << " samples of " << face.size() << " triangles\n";
}
