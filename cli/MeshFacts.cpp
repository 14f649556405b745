#include "MeshFacts.h"

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <meshio/MeshShape.h>
#include <meshio/TriangulateMesh.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <type_traits>

namespace Cli {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::double3;
using Korvane::Math::float3;
using Pelon::Any;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

// A point cloud has no arrays for faces.
template <class T>
Ptr<Array<T>> arrayOrEmpty(const Object& mesh, const String& name)
{
    Ptr<Array<T>> array = dataArray<T>(mesh, name);
    return array ? array : Pelon::makeMutable<Array<T>>();
}

Json polygonSizes(const Array<uint>& faceOffset)
{
    std::map<uint, std::size_t> counts;
    for (std::size_t f = 1; f < faceOffset.size(); ++f)
        ++counts[faceOffset[f] - faceOffset[f - 1]];
    Json sizes = Json::object();
    for (const auto& [size, count] : counts)
        sizes[std::to_string(size)] = count;
    return sizes;
}

Json boundingBox(const Array<float3>& points)
{
    if (points.empty())
        return nullptr;
    float3 low = points[0], high = points[0];
    for (const float3& p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    return {{"min", vectorOf(low)}, {"max", vectorOf(high)}};
}

double3 difference(const float3& a, const float3& b)
{
    return {double{a.x} - b.x, double{a.y} - b.y, double{a.z} - b.z};
}

// Half the length of the sum of cross products: exact for planar faces, concave ones too.
double faceArea(const Array<float3>& points, const uint* corner, uint size)
{
    double3 sum = {0, 0, 0};
    for (uint k = 2; k < size; ++k) {
        const double3 a = difference(points[corner[k - 1]], points[corner[0]]);
        const double3 b = difference(points[corner[k]], points[corner[0]]);
        sum.x += a.y * b.z - a.z * b.y;
        sum.y += a.z * b.x - a.x * b.z;
        sum.z += a.x * b.y - a.y * b.x;
    }
    return std::sqrt(sum.x * sum.x + sum.y * sum.y + sum.z * sum.z) / 2;
}

double areaOf(const Array<float3>& points, const Array<uint>& faceOffset,
              const Array<uint>& faceVertex)
{
    double area = 0;
    for (std::size_t f = 1; f < faceOffset.size(); ++f)
        area += faceArea(points, faceVertex.data() + faceOffset[f - 1],
                         faceOffset[f] - faceOffset[f - 1]);
    return area;
}

std::string componentWord(const String& component)
{
    if (component == sPointComp)
        return "points";
    if (component == sFaceComp)
        return "faces";
    if (component == sFaceVertexComp)
        return "corners";
    return component.c_str();
}

Json factsOfProperty(const Object& mesh, const String& name)
{
    const Any data = getDataGeoProperty(mesh, name)->getProperty(sData);
    Json type = nullptr, values = nullptr;
    Korvane::visitArray(data, [&](const auto& array, const char* typeName) {
        type = typeName;
        values = array->size();
    });
    const Array<String> chain = getTargetChain(mesh, name);
    const String component = getTargetComponent(mesh, name);
    return {{"name", name.c_str()},
            {"type", type},
            {"component", componentWord(component)},
            {"through", chain.empty() ? Json() : Json(chain[0].c_str())},
            {"elements", getElementCount(mesh, component)},
            {"values", values}};
}

Json propertiesOf(const Object& mesh)
{
    Json properties = Json::array();
    for (const String& name : mesh.propertyNames())
        if (getDataGeoProperty(mesh, name) && name != sPointPosition && name != sFaceOffset &&
            name != sFaceVertex)
            properties.push_back(factsOfProperty(mesh, name));
    return properties;
}

template <class T>
Json plainValue(const T& value, const char* typeName)
{
    if constexpr (std::is_same_v<T, String>)
        return value.c_str();
    else if constexpr (std::is_same_v<T, float>)
        return briefly(value);
    else if constexpr (std::is_arithmetic_v<T>)
        return value;
    else
        return typeName;
}

// Arrays and other values are told by their type.
Json valueOf(const Any& value)
{
    Json told = "value of another type";
    Korvane::anyElementType([&](auto tag, const char* typeName) {
        const auto* const plain = value.get<typename decltype(tag)::type>();
        if (plain)
            told = plainValue(*plain, typeName);
        return plain != nullptr;
    });
    Korvane::visitArray(value, [&](const auto& array, const char* typeName) {
        told = std::to_string(array->size()) + " of " + typeName;
    });
    return told;
}

Json ownValues(const Object& mesh)
{
    Json values = Json::object();
    for (const String& name : mesh.propertyNames()) {
        const Any value = mesh.getProperty(name);
        if (!value.get<Ptr<Object>>())
            values[name.c_str()] = valueOf(value);
    }
    return values;
}

Json factsOf(const MeshIo::Problem& problem)
{
    return {{"count", problem.count}, {"places", problem.places}};
}

void addShape(const MeshIo::MeshShape& shape, Json& facts)
{
    const bool hasFaces = shape.components > 0;
    facts["edges"] = shape.edges;
    facts["boundary_edges"] = shape.boundaryEdges;
    facts["non_manifold_edges"] = factsOf(shape.nonManifold);
    facts["same_direction_edges"] = factsOf(shape.sameDirection);
    facts["valence"] = {{"least", hasFaces ? Json(shape.least) : Json()},
                        {"most", hasFaces ? Json(shape.most) : Json()}};
    facts["components"] = shape.components;
    facts["closed"] = shape.isClosed;
    facts["euler_characteristic"] = shape.eulerCharacteristic;
    facts["genus"] = shape.genus ? Json(*shape.genus) : Json();
    facts["non_manifold_points"] = shape.nonManifoldPoints;
    facts["unused_points"] = shape.unusedPoints;
}

}  // namespace

double briefly(float value)
{
    char text[32];
    const char* const end = std::to_chars(text, text + sizeof text, value).ptr;
    double brief = value;
    std::from_chars(text, end, brief);
    return brief;
}

Json vectorOf(const float3& v)
{
    return {briefly(v.x), briefly(v.y), briefly(v.z)};
}

Json countsOf(const Object& mesh)
{
    return {{"points", getElementCount(mesh, sPointComp)},
            {"corners", getElementCount(mesh, sFaceVertexComp)},
            {"faces", getElementCount(mesh, sFaceComp)}};
}

Json carriedNames(const Object& mesh)
{
    Json names = Json::array();
    for (const String& name : MeshIo::carriedPropertyNames(mesh))
        names.push_back(name.c_str());
    return names;
}

Json factsOf(const Object& mesh)
{
    const auto points = arrayOrEmpty<float3>(mesh, sPointPosition);
    const auto faceOffset = arrayOrEmpty<uint>(mesh, sFaceOffset);
    const auto faceVertex = arrayOrEmpty<uint>(mesh, sFaceVertex);
    Json facts = countsOf(mesh);
    facts["polygon_sizes"] = polygonSizes(*faceOffset);
    addShape(MeshIo::shapeOf(mesh), facts);
    facts["bounding_box"] = boundingBox(*points);
    facts["area"] = areaOf(*points, *faceOffset, *faceVertex);
    facts["properties"] = propertiesOf(mesh);
    facts["values"] = ownValues(mesh);
    return facts;
}

}  // namespace Cli
