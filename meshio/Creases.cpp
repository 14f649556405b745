#include <meshio/Creases.h>

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>

#include <meshio/ReadFile.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace MeshIo {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::double3;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

constexpr uint kNone = 0xFFFFFFFF;
constexpr double kDegreesPerRadian = 57.295779513082320877;

double3 cross(const double3& a, const double3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double dot(const double3& a, const double3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

// The sum over the fan's triangles, whatever the shape of the polygon.
double3 normalOf(const TriangulatedView& mesh, const Array<float3>& points, uint face)
{
    const uint first = mesh.faceOffset[face];
    const float3& apex = points[mesh.faceVertex[first]];
    const auto fromApex = [&](uint corner) {
        const float3& p = points[mesh.faceVertex[corner]];
        return double3{double{p.x} - apex.x, double{p.y} - apex.y, double{p.z} - apex.z};
    };
    double3 sum{0, 0, 0};
    for (uint corner = first + 2; corner < mesh.faceOffset[face + 1]; ++corner) {
        const double3 n = cross(fromApex(corner - 1), fromApex(corner));
        sum = {sum.x + n.x, sum.y + n.y, sum.z + n.z};
    }
    return sum;
}

// By the arc tangent, which tells small angles as well as large ones.
double degreesBetween(const double3& a, const double3& b)
{
    const double3 n = cross(a, b);
    return std::atan2(std::sqrt(dot(n, n)), dot(a, b)) * kDegreesPerRadian;
}

// Calls `visit(face, triangle)` for each triangle of each fan.
template <class Visit>
void forEachTriangle(const Array<uint>& faceOffset, const Visit& visit)
{
    uint triangle = 0;
    for (uint face = 0; face + 1 < faceOffset.size(); ++face)
        for (uint corner = faceOffset[face] + 2; corner < faceOffset[face + 1]; ++corner)
            visit(face, triangle++);
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

// Each edge of a polygon is one edge of one of its triangles.
template <class T>
Array<bool> onTriangles(const TriangulatedView& view, const Array<T>& corners)
{
    Array<bool> creases(view.triFaceVertex.size());
    forEachTriangle(view.faceOffset, [&](uint face, uint triangle) {
        const uint first = view.faceOffset[face];
        const uint last = view.faceOffset[face + 1] - 1;
        const uint middle = triangle + 2 * face + 1;
        if (middle == first + 1)
            creases[std::size_t{3} * triangle] = isCrease(corners[first]);
        creases[std::size_t{3} * triangle + 1] = isCrease(corners[middle]);
        if (middle + 1 == last)
            creases[std::size_t{3} * triangle + 2] = isCrease(corners[last]);
    });
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
           (component == sPointComp        ? "points"
            : component == sFaceComp       ? "faces"
            : component == sFaceVertexComp ? "corners"
                                           : quoted(component.view()));
}

[[noreturn]] void reject(const std::string& name, const std::string& what)
{
    throw std::invalid_argument("crease property " + quoted(name) + " " + what +
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
    Array<uint> faceOf(mesh.triFaceVertex.size() / 3);
    forEachTriangle(mesh.faceOffset, [&](uint face, uint triangle) { faceOf[triangle] = face; });
    Array<double3> normals(mesh.faceOffset.empty() ? 0 : mesh.faceOffset.size() - 1);
    for (uint face = 0; face < normals.size(); ++face)
        normals[face] = normalOf(mesh, points, face);

    Array<bool> creases(mesh.triFaceVertex.size());
    for (std::size_t e = 0; e + 1 < mesh.triEdges.size(); e += 2) {
        const uint corner = mesh.triEdges[e];
        const uint other = mesh.triEdges[e + 1];
        if (other == kNone)
            continue;
        const uint a = faceOf[corner / 3];
        const uint b = faceOf[other / 3];
        creases[corner] = a != b && degreesBetween(normals[a], normals[b]) > degrees;
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

}  // namespace MeshIo
