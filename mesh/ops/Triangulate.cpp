#include <TessaryMesh/Operations.h>

#include <Tessary/Triangulation.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "ops/FanParents.h"
#include "ops/ParentMaps.h"
#include "ops/PropertyPlan.h"
#include "ops/SplitConcave.h"

#include <set>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Kind = CarriedProperty::Kind;

// What the kernel carries, and what goes past it.
struct Ways {
    explicit Ways(const PropertyPlan& plan)
    {
        for (const CarriedProperty& property : plan.carried)
            add(property);
    }

    Array<String> byKernel;      // plain properties, and index arrays dressed up as such
    std::set<String> ranges;     // the index arrays among them
    std::set<String> indexed;    // values addressed through one of the ranges
    std::set<String> unchanged;  // what belongs to the points or to the object alone

private:
    void add(const CarriedProperty& property)
    {
        if (property.kind == Kind::OwnValue)
            unchanged.insert(property.name);
        else if (property.kind == Kind::PointList)
            unchanged.insert({property.name, property.range, property.component});
        else if (property.range.empty())
            byKernel.push_back(property.name);
        else {
            indexed.insert(property.name);
            if (ranges.insert(property.range).second)
                byKernel.push_back(property.range);
        }
    }
};

// The kernel carries an index per face only; plain corner values it carries corner by corner. The
// index arrays take the place of their range properties, so no name can clash.
Object withPlainIndices(const Object& mesh, const Ways& ways)
{
    Object plain = mesh;
    for (const String& name : ways.ranges) {
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
        throw InvalidMesh(Problem{Problem::Severity::Error,
                                  "topology-missing",
                                  "arrays that a mesh needs are missing",
                                  1,
                                  {},
                                  "validate it"});
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

Any carriedValue(const Object& mesh, const Object& triangles, const Ways& ways, const String& name)
{
    if (ways.ranges.count(name))
        return rangeFrom(triangles, name);
    if (ways.indexed.count(name))
        return indexedValuesFrom(mesh, name);
    if (ways.unchanged.count(name))
        return mesh.getProperty(name);
    return triangles.getProperty(name);
}

Result fansOf(const Object& mesh, const Carry& carry)
{
    const MeshArrays arrays(mesh);
    requireFaces(*arrays.faceOffset, arrays.faceVertex->size());
    PropertyPlan plan = planProperties(mesh, carry, Onto::Triangles);
    const Ways ways(plan);
    const auto triangles = trianglesOf(withPlainIndices(mesh, ways), ways.byKernel);

    Result result{Korvane::createObject(), {}, std::move(plan.warnings)};
    for (const String& name : mesh.propertyNames())
        if (Any value = carriedValue(mesh, *triangles, ways, name); !value.empty())
            result.mesh->setProperty(name, std::move(value));
    throwIfCancelled();  // small meshes are done before any loop asks
    result.parents.face = facesOfTriangles(*arrays.faceOffset);
    result.parents.corner = cornersOfTriangles(*arrays.faceOffset);
    return result;
}

}  // namespace

Result triangulate(const Object& mesh, const Carry& carry, Concave concave)
{
    return guarded([&] {
        std::optional<Result> split;
        if (concave == Concave::Split)
            split = splitConcave(mesh, carry, Onto::Triangles);
        if (!split)
            return fansOf(mesh, carry);
        Result result = fansOf(*split->mesh, Carry::all());
        result.parents.face = through(result.parents.face, split->parents.face);
        result.parents.corner = through(result.parents.corner, split->parents.corner);
        result.warnings = std::move(split->warnings);
        return result;
    });
}

}  // namespace TessaryMesh
