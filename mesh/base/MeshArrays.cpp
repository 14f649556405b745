#include "base/MeshArrays.h"

#include <Tessary/Triangulation.h>

#include "base/Host.h"

#include <stdexcept>

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

Array<uint> fanTriangles(const Array<uint>& faceOffset, const Array<uint>& faceVertex)
{
    Array<uint> triFaceOffset, triFaceVertex;
    if (!Tessary::computeTriangulation(faceOffset, faceVertex, triFaceOffset, triFaceVertex))
        throw std::invalid_argument("the mesh has faces that cannot be triangulated; validate it");
    return triFaceVertex;
}

}  // namespace TessaryMesh
