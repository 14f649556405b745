#include <Korvane/Geometry.h>

#include <algorithm>

namespace Korvane {
namespace Geometry {

using Math::float3;
using Pelon::Any;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
using Pelon::StringView;
using Pelon::uint;

const String sPointPosition = "point_position";
const String sPointVelocity = "point_velocity";
const String sFaceOffset = "face_offset";
const String sFaceVertex = "face_vertex";
const String sPointComp = "point_component";
const String sFaceComp = "face_component";
const String sFaceVertexComp = "face_vertex_component";
const String sRenderSettings = "render_settings";

const String sInterp = "interpolation";
const String sDefault = "default";
const String sDependsOn = "depends_on";
const String sData = "data";
const String sTarget = "target";

namespace {

const String sElementCount = "element_count";
const String sIndices = "indices";

template <class T>
T valueOr(const Object& object, StringView name, T otherwise)
{
    const Any value = object.getProperty(name);
    const T* const typed = value.get<T>();
    return typed ? *typed : otherwise;
}

Ptr<Object> nested(const Object& object, StringView name)
{
    return valueOr<Ptr<Object>>(object, name, nullptr);
}

bool isComponent(const Object& object)
{
    return object.hasProperty(sElementCount);
}

// Follows the targets from `property`, collects the properties passed on the way, and returns the
// component at the end.
String followTargets(const Object& geometry, StringView property, Array<String>& chain)
{
    Ptr<Object> current = nested(geometry, property);
    if (!current || isComponent(*current))
        return String();
    for (;;) {
        String target = valueOr(*current, sTarget, String());
        current = nested(geometry, target);
        if (!current || isComponent(*current))
            return target;
        if (StringView(target) == property ||
            std::find(chain.begin(), chain.end(), target) != chain.end())
            return String();
        chain.push_back(target);
    }
}

void addComponent(Object& geometry, const String& name, uint count)
{
    const MutablePtr<Object> component = createObject();
    populateComponentGeoProperty(count, *component);
    geometry.setProperty(name, component);
}

void addMesh(Object& geometry, Array<float3> points, Array<uint> faceOffset, Array<uint> faceVertex)
{
    const std::size_t faceCount = faceOffset.empty() ? 0 : faceOffset.size() - 1;
    addComponent(geometry, sPointComp, static_cast<uint>(points.size()));
    addComponent(geometry, sFaceComp, static_cast<uint>(faceCount));
    addComponent(geometry, sFaceVertexComp, static_cast<uint>(faceVertex.size()));
    addDataGeoProperty<float3>(geometry, sPointPosition, sPointComp,
                               makeMutable<Array<float3>>(std::move(points)));
    addDataGeoProperty<uint>(geometry, sFaceOffset, sFaceComp,
                             makeMutable<Array<uint>>(std::move(faceOffset)));
    addDataGeoProperty<uint>(geometry, sFaceVertex, sFaceVertexComp,
                             makeMutable<Array<uint>>(std::move(faceVertex)));
}

}  // namespace

uint getElementCount(const Object& geometry, StringView component)
{
    const Ptr<Object> object = nested(geometry, component);
    return object ? valueOr<uint>(*object, sElementCount, 0) : 0;
}

bool setElementCount(StringView component, uint count, Object& geometry)
{
    const Ptr<Object> object = nested(geometry, component);
    if (!object || !isComponent(*object))
        return false;
    const MutablePtr<Object> changed = makeMutable<Object>(*object);
    populateComponentGeoProperty(count, *changed);
    geometry.setProperty(String(component), changed);
    return true;
}

String getTargetComponent(const Object& geometry, StringView property)
{
    Array<String> chain;
    return followTargets(geometry, property, chain);
}

Array<String> getTargetChain(const Object& geometry, StringView property)
{
    Array<String> chain;
    followTargets(geometry, property, chain);
    return chain;
}

Ptr<Object> getDataGeoProperty(const Object& geometry, StringView name)
{
    Ptr<Object> property = nested(geometry, name);
    return property && property->hasProperty(sData) ? property : nullptr;
}

Ptr<Object> getRangeGeoProperty(const Object& geometry, StringView name)
{
    Ptr<Object> property = nested(geometry, name);
    return property && getRangeGeoPropIndices(*property) ? property : nullptr;
}

Ptr<Array<uint>> getRangeGeoPropIndices(const Object& rangeProperty)
{
    return valueOr<Ptr<Array<uint>>>(rangeProperty, sIndices, nullptr);
}

bool populateRangeGeoProperty(Ptr<Array<uint>> indices, StringView target, Object& object)
{
    if (!indices)
        return false;
    object.setProperty(sIndices, std::move(indices));
    object.setProperty(sTarget, String(target));
    return true;
}

void populateComponentGeoProperty(uint count, Object& object)
{
    object.setProperty(sElementCount, count);
}

void populateMesh(Object& geometry)
{
    addMesh(geometry, {}, {0}, {});
}

bool populatePointCloud(Ptr<Array<float3>> positions, Object& geometry)
{
    if (!positions)
        return false;
    addComponent(geometry, sPointComp, static_cast<uint>(positions->size()));
    addDataGeoProperty<float3>(geometry, sPointPosition, sPointComp, std::move(positions));
    return true;
}

MutablePtr<Object> makeMesh(Array<float3> points, Array<uint> faceOffset, Array<uint> faceVertex)
{
    MutablePtr<Object> geometry = createObject();
    addMesh(*geometry, std::move(points), std::move(faceOffset), std::move(faceVertex));
    return geometry;
}

void addRangeGeoProperty(Object& geometry, const String& name, const String& component,
                         Ptr<Array<uint>> indices)
{
    const MutablePtr<Object> property = createObject();
    populateRangeGeoProperty(std::move(indices), component, *property);
    geometry.setProperty(name, property);
}

}  // namespace Geometry
}  // namespace Korvane
