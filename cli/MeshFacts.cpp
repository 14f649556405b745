#include "MeshFacts.h"

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <type_traits>

namespace Cli {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Any;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

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

Json factsOf(const std::optional<BoundingBox>& box)
{
    return box ? Json({{"min", vectorOf(box->low)}, {"max", vectorOf(box->high)}}) : Json();
}

Json orNull(const std::string& text)
{
    return text.empty() ? Json() : Json(text);
}

// "points", "corners" and "faces"; other components by their names.
std::string componentWord(const std::string& component)
{
    const bool isElement = component == "point" || component == "corner" || component == "face";
    return isElement ? component + "s" : component;
}

Json propertiesOf(const Object& mesh)
{
    Json properties = Json::array();
    for (const TessaryMesh::PropertyFacts& facts : TessaryMesh::propertiesOf(mesh))
        properties.push_back({{"name", facts.name},
                              {"type", orNull(facts.type)},
                              {"component", componentWord(facts.component)},
                              {"through", orNull(facts.through)},
                              {"elements", facts.elements},
                              {"values", facts.type.empty() ? Json() : Json(facts.values)}});
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

Json factsOf(const TessaryMesh::Problem& problem)
{
    Json places = Json::array();
    for (const TessaryMesh::Problem::Place& place : problem.places)
        places.push_back(place.text);
    return {{"count", problem.count}, {"places", places}};
}

void addShape(const TessaryMesh::MeshShape& shape, Json& facts)
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
    char text[32] = {};
    std::to_chars(text, text + sizeof text - 1, value);
    return std::strtod(text, nullptr);  // not every library has from_chars for double
}

std::optional<BoundingBox> boundingBoxOf(const Object& mesh)
{
    const auto points = dataArray<float3>(mesh, sPointPosition);
    if (!points || points->empty())
        return std::nullopt;
    float3 low = (*points)[0], high = low;
    for (const float3& p : *points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    return BoundingBox{low, high};
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
    for (const String& name : TessaryMesh::carriedPropertyNames(mesh))
        names.push_back(name.c_str());
    return names;
}

Json factsOf(const Object& mesh)
{
    const auto faceOffset = dataArray<uint>(mesh, sFaceOffset);
    Json facts = countsOf(mesh);
    facts["polygon_sizes"] = faceOffset ? polygonSizes(*faceOffset) : Json::object();
    addShape(TessaryMesh::shapeOf(mesh), facts);
    facts["bounding_box"] = factsOf(boundingBoxOf(mesh));
    facts["area"] = TessaryMesh::areaOf(mesh);
    facts["properties"] = propertiesOf(mesh);
    facts["values"] = ownValues(mesh);
    return facts;
}

}  // namespace Cli
