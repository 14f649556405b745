// Calls off a long triangulation from another thread.
#include <Korvane/Geometry.h>
#include <Pelon/Job.h>
#include <Tessary/Triangulation.h>

#include <iostream>
#include <stdexcept>
#include <thread>

using namespace Korvane;
using Pelon::Array;
using Pelon::uint;

// `faceCount` quads that share four points, with an id on each.
Pelon::MutablePtr<Object> manyQuads(uint faceCount)
{
    Array<uint> offsets(faceCount + 1);
    Array<uint> corners(4 * std::size_t{faceCount});
    for (uint f = 0; f <= faceCount; ++f)
        offsets[f] = 4 * f;
    for (std::size_t c = 0; c < corners.size(); ++c)
        corners[c] = c % 4;
    auto mesh = Geometry::makeMesh({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, std::move(offsets),
                                   std::move(corners));
    Geometry::addDataGeoProperty<int>(*mesh, "id", Geometry::sFaceComp,
                                      Pelon::makeMutable<Array<int>>(faceCount, 1));
    return mesh;
}

int main()
{
    const auto mesh = manyQuads(1000);
    Pelon::Job job;
    std::thread user([&job] { job.cancel(); });  // Ctrl-C, a window that closes, a time limit
    user.join();

    const Pelon::JobScope scope(job);  // what this thread does from here on belongs to the job
    try {
        const auto triangles = createObject();
        Tessary::triangulatePolyMesh(*mesh, {"id"}, *triangles);
        std::cout << "finished\n";
    } catch (const std::runtime_error& error) {
        std::cout << "stopped: " << error.what() << '\n';
    }
}
