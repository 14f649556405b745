#include "ops/TriangulateMesh.h"

#include <Tessary/Triangulation.h>

#include "base/Host.h"
#include "base/PropertyKinds.h"

#include <set>
#include <stdexcept>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

// How each property of the source gets into the result.
struct Plan {
    Array<String> byKernel;      // plain properties, and index arrays dressed up as such
    std::set<String> ranges;     // the index arrays among them
    std::set<String> indexed;    // values addressed through one of the ranges
    std::set<String> unchanged;  // what belongs to the points alone
    std::vector<std::string> warnings;
};

std::optional<String> targetOf(const Object& mesh, const String& name)
{
    const Ptr<Object> property = getDataGeoProperty(mesh, name);
    return property ? entryOf<String>(*property, sTarget) : std::nullopt;
}

// Offsets into the values of another property, which they name as their target.
bool isOffsets(const Object& mesh, const String& name)
{
    const std::optional<String> target = targetOf(mesh, name);
    return target && getDataGeoProperty(mesh, *target);
}

String offsetsOf(const Object& mesh, const String& list)
{
    for (const String& name : mesh.propertyNames())
        if (targetOf(mesh, name) == list && dataArray<uint>(mesh, name))
            return name;
    return String();
}

// Without a declaration the length of the offsets says whose lists they are. Where there are as many
// points as faces it does not, and guessing could attach values to the wrong elements.
bool isPointList(const Object& mesh, const String& offsets)
{
    const std::uint64_t count = dataArray<uint>(mesh, offsets)->size();
    const std::uint64_t points = getElementCount(mesh, sPointComp);
    const std::uint64_t faces = getElementCount(mesh, sFaceComp);
    const String owner = declaredOwner(*getDataGeoProperty(mesh, offsets));
    return count == points + 1 && (owner.empty() ? points != faces : owner == sPointComp);
}

void leaveOut(Plan& plan, const std::string& kind, const String& name)
{
    plan.warnings.push_back(kind + " \"" + name.c_str() +
                            "\" does not follow onto triangles and is left out");
}

void planOther(const Object& mesh, const String& name, const String& component, Plan& plan)
{
    const String offsets = offsetsOf(mesh, name);
    if (offsets.empty())
        leaveOut(plan, "property", name);
    else if (isPointList(mesh, offsets))
        plan.unchanged.insert({name, offsets, component});
    else
        leaveOut(plan, "list property", name);
}

void planIndexed(const Object& mesh, const String& name, const Array<String>& chain, Plan& plan)
{
    const String& range = chain[0];
    if (chain.size() > 1 || !getRangeGeoProperty(mesh, range) ||
        !isMeshComponent(getTargetComponent(mesh, name)))
        return leaveOut(plan, "indexed property", name);
    plan.indexed.insert(name);
    if (plan.ranges.insert(range).second)
        plan.byKernel.push_back(range);
}

void planProperty(const Object& mesh, const String& name, Plan& plan)
{
    if (name == sRenderSettings)
        return plan.byKernel.push_back(name);
    const Ptr<Object> property = getDataGeoProperty(mesh, name);
    if (!property || isTopology(name) || isOffsets(mesh, name))
        return;
    const Array<String> chain = getTargetChain(mesh, name);
    const String component = getTargetComponent(mesh, name);
    if (!chain.empty())
        planIndexed(mesh, name, chain, plan);
    else if (!isMeshComponent(component))
        planOther(mesh, name, component, plan);
    else if (!Korvane::visitArray(property->getProperty(sData), [](auto&&...) {}))
        leaveOut(plan, "property of an unknown element type", name);
    else
        plan.byKernel.push_back(name);
}

Plan planFor(const Object& mesh, const Array<String>& propertyNames)
{
    const std::set<String> named(propertyNames.begin(), propertyNames.end());
    Plan plan;
    for (const String& name : mesh.propertyNames())
        if (named.count(name))
            planProperty(mesh, name, plan);
    return plan;
}

// The kernel carries an index per face only; plain corner values it carries corner by corner. The
// index arrays take the place of their range properties, so no name can clash.
Object withPlainIndices(const Object& mesh, const Plan& plan)
{
    Object plain = mesh;
    for (const String& name : plan.ranges) {
        const Ptr<Object> range = getRangeGeoProperty(mesh, name);
        addDataGeoProperty<uint>(plain, name, getTargetComponent(mesh, name),
                                 getRangeGeoPropIndices(*range), kNone);
    }
    return plain;
}

MutablePtr<Object> trianglesOf(const Object& mesh, const Array<String>& names)
{
    MutablePtr<Object> triangles = Korvane::createObject();
    if (!Tessary::triangulatePolyMesh(mesh, names, *triangles))
        throw std::invalid_argument("the mesh has faces that cannot be triangulated; validate it");
    if (getElementCount(mesh, sFaceComp) == 0) {
        // The kernel leaves the target of a mesh without faces empty, even of points.
        populatePointCloud(dataArray<float3>(mesh, sPointPosition), *triangles);
        Tessary::copyPropertiesToTriangulatedMesh(mesh, names, *triangles);
    }
    return triangles;
}

Any rangeFrom(const Object& triangles, const String& name)
{
    const MutablePtr<Object> range = Korvane::createObject();
    populateRangeGeoProperty(dataArray<uint>(triangles, name), getTargetComponent(triangles, name),
                             *range);
    return range;
}

// The values are shared. Like every carried property this one depends on nothing.
Any indexedValuesFrom(const Object& mesh, const String& name)
{
    const auto property = makeMutable<Object>(*getDataGeoProperty(mesh, name));
    property->setProperty(sDependsOn, makeMutable<Array<String>>());
    return property;
}

Any carriedValue(const Object& mesh, const Object& triangles, const Plan& plan, const String& name)
{
    if (plan.ranges.count(name))
        return rangeFrom(triangles, name);
    if (plan.indexed.count(name))
        return indexedValuesFrom(mesh, name);
    if (plan.unchanged.count(name) || isOwnValue(mesh, name))
        return mesh.getProperty(name);
    return triangles.getProperty(name);
}

}  // namespace

Array<String> carriedPropertyNames(const Object& mesh)
{
    Array<String> names;
    for (const String& name : mesh.propertyNames()) {
        const bool isData =
            getDataGeoProperty(mesh, name) && !isTopology(name) && !isOffsets(mesh, name);
        if (isData || name == sRenderSettings)
            names.push_back(name);
    }
    return names;
}

TriangulatedMesh triangulateMesh(const Object& mesh, const Array<String>& propertyNames)
{
    Plan plan = planFor(mesh, propertyNames);
    const MutablePtr<Object> triangles = trianglesOf(withPlainIndices(mesh, plan), plan.byKernel);

    const MutablePtr<Object> result = Korvane::createObject();
    for (const String& name : mesh.propertyNames())
        if (Any value = carriedValue(mesh, *triangles, plan, name); !value.empty())
            result->setProperty(name, std::move(value));
    return {result, std::move(plan.warnings)};
}

}  // namespace TessaryMesh
