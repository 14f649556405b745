#include "base/MeshArrays.h"

#include <Tessary/Triangulation.h>
#include <TessaryMesh/Errors.h>

#include "base/Host.h"

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

}  // namespace

MeshArrays::MeshArrays(const Object& mesh)
    : points(arrayOr<float3>(mesh, Geometry::sPointPosition, {})),
      faceOffset(arrayOr<uint>(mesh, Geometry::sFaceOffset, {0})),
      faceVertex(arrayOr<uint>(mesh, Geometry::sFaceVertex, {}))
{}

void rejectFaces(const Array<uint>& faceOffset)
{
    Problem problem{Problem::Severity::Error,
                    "small-face",
                    "the mesh has faces that cannot be triangulated",
                    0,
                    {},
                    "validate it"};
    for (std::size_t face = 0; face + 1 < faceOffset.size(); ++face) {
        const uint size = faceOffset[face + 1] - faceOffset[face];
        if (size < 3 && problem.count++ == 0)
            problem.places = {
                {"face " + std::to_string(face) + ", which has " + std::to_string(size),
                 Problem::Element::Face, face}};
    }
    throw InvalidMesh(std::move(problem));
}

Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex)
{
    Array<uint> triFaceOffset, triFaceVertex;
    if (!Tessary::computeTriangulation(faceOffset, faceVertex, triFaceOffset, triFaceVertex))
        rejectFaces(faceOffset);
    return triFaceVertex;
}

}  // namespace TessaryMesh
