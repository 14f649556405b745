// What calls of the Python package do, as a C++ program would do it: Python loads this beside the
// package, so that both work on the same arrays in the same process.

#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>
#include <TessaryMesh/Arrays.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <tbb/parallel_for.h>
#include <cstddef>
#include <cstdint>

using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::uint;
using TessaryMesh::Faces;
using TessaryMesh::NumberType;

extern "C" {

// A mesh of memory that the caller keeps; never freed.
const void* meshOf(const float* points, std::size_t pointCount, const uint* corners,
                   std::size_t cornerCount, const uint* offsets, std::size_t faceCount)
{
    auto* const mesh = new Pelon::MutablePtr<Object>(TessaryMesh::makeMesh(
        {points, 3 * pointCount, NumberType::Float32}, {corners, cornerCount, NumberType::UInt32},
        Faces::fromOffsets({offsets, faceCount + 1, NumberType::UInt32})));
    return mesh->get();
}

std::size_t readPly(const char* path)
{
    return Korvane::Geometry::getElementCount(*TessaryMesh::readMesh(path).mesh,
                                              Korvane::Geometry::sFaceComp);
}

std::size_t triangulate(const void* mesh)
{
    return TessaryMesh::triangulate(*static_cast<const Object*>(mesh)).mesh ? 1 : 0;
}

std::size_t validate(const void* mesh)
{
    const auto& object = *static_cast<const Object*>(mesh);
    return TessaryMesh::validateMesh(object).problems.size() +
           TessaryMesh::edgeWarnings(object).size();
}

std::size_t sample(const void* mesh, std::size_t count, uint seed)
{
    TessaryMesh::SampleOptions options;
    options.count = count;
    options.seed = seed;
    return TessaryMesh::sample(*static_cast<const Object*>(mesh), options).mesh ? 1 : 0;
}

std::size_t edges(const uint* corners, std::size_t count)
{
    const auto borrowed = Array<uint>::borrow(corners, count);
    Array<uint> made;
    Tessary::computeTriEdges(*borrowed, made);
    return made.size();
}

std::size_t adjacency(const uint* corners, std::size_t count, std::size_t points)
{
    const auto borrowed = Array<uint>::borrow(corners, count);
    Array<uint> offsets(points + 1), lists(count, 0xFFFFFFFF), adjacent;
    Tessary::constructDualMesh(*borrowed, offsets, lists);
    Tessary::populateAdjacentTri(*borrowed, offsets, lists, adjacent);
    return adjacent.size();
}

std::size_t sphere(const float* points, std::size_t count)
{
    const auto borrowed = Array<float3>::borrow(reinterpret_cast<const float3*>(points), count);
    return Tessary::computeBoundingSphere(*borrowed).getRadius() > 0 ? 1 : 0;
}

std::size_t overlap(const float3* triangles, const float3* boxes, std::size_t count)
{
    Array<bool> meets(count);
    bool* const out = meets.data();
    tbb::parallel_for(std::size_t{0}, count, [=](std::size_t i) {
        const float3 *const p = triangles + 3 * i, *const box = boxes + 2 * i;
        out[i] =
            Tessary::intersect_triangle_with_axis_aligned_box(p[0], p[1], p[2], box[0], box[1]);
    });
    return meets.size();
}

}  // extern "C"
