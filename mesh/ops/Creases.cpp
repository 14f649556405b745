#include "ops/Creases.h"

#include <TessaryMesh/Errors.h>

#include "base/FixedMath.h"
#include "base/Host.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "base/Vectors.h"
#include "ops/FanParents.h"

#include <limits>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

// Whether the angle between two vectors is larger than one of 0 to 180 degrees: whether the sine of the
// difference, which lies between -180 and 180 degrees, is above zero. That tells small angles as well
// as large ones.
bool isLarger(const double3& a, const double3& b, double degrees, const CosSin& angle)
{
    const double sine = length(cross(a, b)), cosine = dot(a, b);
    if (sine == 0)
        return cosine < 0 && degrees < 180;
    return sine * angle.cos - cosine * angle.sin > 0;
}

bool isCrease(bool flag)
{
    return flag;
}

bool isCrease(unsigned char number)
{
    return number != 0;
}

bool isCrease(float weight)
{
    return weight < std::numeric_limits<float>::max();  // false for NaN, too
}

// Each edge of a polygon is one edge of one of its triangles; their other edges lie inside.
template <class T>
Array<bool> onTriangles(const TriangulatedView& view, const Array<T>& corners)
{
    Array<bool> creases(view.triCorner.size());
    std::size_t triangle = 0;
    for (std::size_t face = 0; face + 1 < view.faceOffset.size(); ++face) {
        const uint first = view.faceOffset[face], end = view.faceOffset[face + 1];
        for (uint k = first + 2; k < end; ++k, ++triangle)
            for (std::size_t i = 3 * triangle; i < 3 * triangle + 3; ++i) {
                const uint corner = view.triCorner[i];
                const uint next = view.triCorner[i % 3 == 2 ? i - 2 : i + 1];
                const bool isSide = next == (corner + 1 < end ? corner + 1 : first);
                creases[i] = isSide && isCrease(corners[corner]);
            }
    }
    return creases;
}

// "string on faces", "float on values behind uv_index".
std::string kindOf(const Object& mesh, const std::string& name)
{
    std::string kind = "of an unknown type";
    Korvane::visitArray(getDataGeoProperty(mesh, name)->getProperty(sData),
                        [&kind](const auto&, const char* type) { kind = type; });
    if (const Array<String> chain = getTargetChain(mesh, name); !chain.empty())
        return kind + " behind the indices " + quoted(chain[0].view());
    const String component = getTargetComponent(mesh, name);
    return kind + " on " +
           (isMeshComponent(component) ? elementWord(component) + "s" : quoted(component.view()));
}

[[noreturn]] void reject(const std::string& name, const std::string& what)
{
    throw ArgumentError("creaseProperty", "crease property " + quoted(name) + " " + what +
                                              "; expected a bool, uchar or float for each corner");
}

template <class T>
bool readCreases(const TriangulatedView& view, const Object& mesh, const std::string& name,
                 Array<bool>& creases)
{
    const Ptr<Array<T>> corners = dataArray<T>(mesh, name);
    if (!corners)
        return false;
    if (corners->size() != view.faceVertex.size())
        reject(name, "has " + std::to_string(corners->size()) + " values for " +
                         std::to_string(view.faceVertex.size()) + " corners");
    creases = onTriangles(view, *corners);
    return true;
}

}  // namespace

Array<bool> creasesByAngle(const TriangulatedView& mesh, const Array<float3>& points,
                           double degrees)
{
    const Ptr<Array<uint>> faces = facesOfTriangles(mesh.faceOffset);
    const Array<uint>& faceOf = *faces;
    Array<double3> normals(mesh.faceOffset.size() - 1);
    for (uint face = 0; face < normals.size(); ++face) {
        const uint first = mesh.faceOffset[face];
        normals[face] =
            areaVector(points, mesh.faceVertex.data() + first, mesh.faceOffset[face + 1] - first);
    }

    const CosSin angle = fixedCosSin(degrees);
    Array<bool> creases(mesh.triFaceVertex.size());
    for (std::size_t e = 0; e + 1 < mesh.triEdges.size(); e += 2) {
        const uint corner = mesh.triEdges[e];
        const uint other = mesh.triEdges[e + 1];
        if (other == kNone)
            continue;
        const uint a = faceOf[corner / 3];
        const uint b = faceOf[other / 3];
        creases[corner] = a != b && isLarger(normals[a], normals[b], degrees, angle);
    }
    return creases;
}

Array<bool> creasesByProperty(const TriangulatedView& view, const Object& mesh,
                              const std::string& name)
{
    if (!getDataGeoProperty(mesh, name))
        reject(name, "is missing");
    Array<bool> creases;
    const bool isPlainCorner =
        getTargetChain(mesh, name).empty() && getTargetComponent(mesh, name) == sFaceVertexComp;
    if (!isPlainCorner || !(readCreases<bool>(view, mesh, name, creases) ||
                            readCreases<unsigned char>(view, mesh, name, creases) ||
                            readCreases<float>(view, mesh, name, creases)))
        reject(name, "is " + kindOf(mesh, name));
    return creases;
}

}  // namespace TessaryMesh
