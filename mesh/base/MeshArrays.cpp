#include "base/MeshArrays.h"

#include <Tessary/Triangulation.h>
#include <TessaryMesh/Errors.h>

#include "base/Host.h"

#include <cstdint>
#include <string>
#include <utility>

namespace TessaryMesh {
namespace {

template <class T>
Ptr<Array<T>> arrayOr(const Object& mesh, const String& name, Array<T> otherwise)
{
    Ptr<Array<T>> array = Geometry::dataArray<T>(mesh, name);
    return array && !array->empty() ? array : makeMutable<Array<T>>(std::move(otherwise));
}

bool isFace(const Array<uint>& faceOffset, std::size_t face)
{
    return faceOffset[face + 1] >= std::uint64_t{faceOffset[face]} + 3;
}

Problem::Place placeOf(const Array<uint>& faceOffset, std::size_t face)
{
    const uint first = faceOffset[face], end = faceOffset[face + 1];
    const std::string what = end < first ? "starts at corner " + std::to_string(first) +
                                               " and ends at " + std::to_string(end)
                                         : "has " + std::to_string(end - first);
    return {"face " + std::to_string(face) + ", which " + what, Problem::Element::Face, face};
}

[[noreturn]] void reject(std::uint64_t count, Problem::Place first)
{
    throw InvalidMesh(Problem{Problem::Severity::Error,
                              "small-face",
                              "the mesh has faces that cannot be triangulated",
                              count,
                              {std::move(first)},
                              "validate it"});
}

}  // namespace

MeshArrays::MeshArrays(const Object& mesh)
    : points(arrayOr<float3>(mesh, Geometry::sPointPosition, {})),
      faceOffset(arrayOr<uint>(mesh, Geometry::sFaceOffset, {0})),
      faceVertex(arrayOr<uint>(mesh, Geometry::sFaceVertex, {}))
{}

void requireFaces(const Array<uint>& faceOffset, std::size_t cornerCount)
{
    std::uint64_t wrong = 0;
    std::size_t first = 0;
    for (std::size_t face = faceOffset.size() - 1; face-- > 0;)
        if (!isFace(faceOffset, face)) {
            ++wrong;
            first = face;
        }
    if (wrong > 0)
        reject(wrong, placeOf(faceOffset, first));
    const uint begin = faceOffset[0], end = faceOffset[faceOffset.size() - 1];
    if (begin != 0 || end != cornerCount)
        reject(1, {"the offsets, which lead from corner " + std::to_string(begin) + " to " +
                   std::to_string(end) + " of " + std::to_string(cornerCount)});
}

Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex)
{
    requireFaces(faceOffset, faceVertex.size());
    Array<uint> triFaceOffset, triFaceVertex;
    Tessary::computeTriangulation(faceOffset, faceVertex, triFaceOffset, triFaceVertex);
    return triFaceVertex;
}

}  // namespace TessaryMesh
