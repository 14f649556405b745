#include "base/MeshArrays.h"

#include <Tessary/Triangulation.h>
#include <TessaryMesh/Errors.h>

#include "base/Host.h"

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

void rejectFaces()
{
    throw InvalidMesh(Problem{Problem::Severity::Error,
                              "small-face",
                              "the mesh has faces that cannot be triangulated",
                              1,
                              {},
                              "validate it"});
}

Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex)
{
    Array<uint> triFaceOffset, triFaceVertex;
    if (!Tessary::computeTriangulation(faceOffset, faceVertex, triFaceOffset, triFaceVertex))
        rejectFaces();
    return triFaceVertex;
}

}  // namespace TessaryMesh
