#include "ops/QuadProperties.h"

#include <Tessary/CutMesh.h>
#include <Tessary/Topology.h>

#include "base/Host.h"
#include "base/MeshArrays.h"
#include "ops/SeamCorners.h"
#include <TessaryMesh/Errors.h>

#include <algorithm>
#include <set>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Common::DataInterpolationMode;

const String kPositions = "positions";  // no other name in a stage begins with this letter

// A mesh without faces may lack the offsets, which the kernel needs for nothing then.
MutablePtr<Object> emptySource(const Object& mesh)
{
    MutablePtr<Object> source = Korvane::createObject();
    if (mesh.hasProperty(sFaceOffset))
        source->setProperty(sFaceOffset, mesh.getProperty(sFaceOffset));
    return source;
}

MutablePtr<Object> emptyQuads(const CutPoints& cut)
{
    MutablePtr<Object> quads = Korvane::createObject();
    populateMesh(*quads);
    const uint corners = static_cast<uint>(cut.edgeWeights.size());
    setElementCount(sPointComp, static_cast<uint>(cut.origins.size()), *quads);
    setElementCount(sFaceComp, corners, *quads);
    setElementCount(sFaceVertexComp, 4 * corners, *quads);
    return quads;
}

MutablePtr<Object> trianglesOf(uint pointCount, Array<uint> cornerPoint)
{
    return makeMesh(Array<float3>(pointCount), {0}, std::move(cornerPoint));
}

void interpolateWith(const CutPoints& cut, const Object& source, const Object& triangles,
                     Object& quads)
{
    throwIfCancelled();
    Array<uint> ids(cut.origins.size());
    for (uint i = 0; i < ids.size(); ++i)
        ids[i] = i;
    Tessary::interpolatePropertiesToCutMesh(source, cut.triangleWeights, cut.edgeWeights, triangles,
                                            ids, cut.origins, quads);
}

// What lies between corners one of which has no value has none either.
void unsetBesideUnset(Array<uint>& indices)
{
    for (std::size_t t = 0; t + 11 < indices.size(); t += 12) {
        uint* const slot = indices.data() + t;
        const bool no0 = slot[0] == kNone, no1 = slot[4] == kNone, no2 = slot[8] == kNone;
        if (no0 || no1)
            slot[1] = slot[7] = kNone;
        if (no1 || no2)
            slot[5] = slot[11] = kNone;
        if (no2 || no0)
            slot[3] = slot[9] = kNone;
        if (no0 || no1 || no2)
            slot[2] = slot[6] = slot[10] = kNone;
    }
}

void unsetBesideUnset(const String& range, Object& quads)
{
    const auto indices =
        makeMutable<Array<uint>>(*getRangeGeoPropIndices(*getRangeGeoProperty(quads, range)));
    unsetBesideUnset(*indices);
    addRangeGeoProperty(quads, range, sFaceVertexComp, indices);
}

std::size_t valueCountOf(const Object& mesh, const String& name)
{
    std::size_t count = 0;
    Korvane::visitArray(getDataGeoProperty(mesh, name)->getProperty(sData),
                        [&count](const auto& array, const char*) { count = array->size(); });
    return count;
}

}  // namespace

QuadProperties::QuadProperties(const Object& mesh, const Carry& carry)
    : m_mesh(mesh),
      m_plan(planProperties(mesh, carry, Onto::Quads)),
      m_result(Korvane::createObject())
{
    for (const CarriedProperty& property : m_plan.carried) {
        if (property.kind != CarriedProperty::Kind::Values)
            continue;
        const std::string number = std::to_string(m_carried.size());
        m_carried.push_back(
            {property, "v" + number, property.range.empty() ? String() : String("r" + number)});
    }
}

// The stage's property has a default of its values' type, which the kernel asks for.
void QuadProperties::stage(const Carried& carried, const Array<uint>* indices, Object& source) const
{
    const Ptr<Object> property = getDataGeoProperty(m_mesh, carried.name);
    const auto mode =
        entryOf<DataInterpolationMode>(*property, sInterp).value_or(DataInterpolationMode::Linear);
    Korvane::visitArray(property->getProperty(sData), [&](const auto& array, const char*) {
        using T = typename std::decay_t<decltype(*array)>::value_type;
        addDataGeoProperty<T>(source, carried.stageName,
                              indices ? carried.stageRange : carried.component, array,
                              entryOf<T>(*property, sDefault).value_or(T()), mode);
    });
    if (indices)
        addRangeGeoProperty(source, carried.stageRange, carried.component,
                            makeMutable<Array<uint>>(*indices));
}

void QuadProperties::interpolate(const CutPoints& cut)
{
    interpolateSeparately(cut);
    std::set<String> done;
    for (const Carried& carried : m_carried)
        if (carried.component == sFaceVertexComp && !carried.range.empty() &&
            done.insert(carried.range).second)
            interpolateCornersOf(carried.range, cut);
}

// All but indexed corners, for which neighbours matter.
void QuadProperties::interpolateSeparately(const CutPoints& cut)
{
    const MutablePtr<Object> source = emptySource(m_mesh);
    addDataGeoProperty<float3>(*source, kPositions, sPointComp, MeshArrays(m_mesh).points);
    for (const Carried& carried : m_carried) {
        const Ptr<Object> range =
            carried.range.empty() ? nullptr : getRangeGeoProperty(m_mesh, carried.range);
        if (!range)
            stage(carried, nullptr, *source);
        else if (carried.component != sFaceVertexComp)
            stage(carried, getRangeGeoPropIndices(*range).get(), *source);
    }
    m_result = emptyQuads(cut);
    interpolateWith(cut, *source, *trianglesOf(0, cut.cornerPoint), *m_result);
}

void QuadProperties::interpolateCornersOf(const String& range, const CutPoints& cut)
{
    const Ptr<Array<uint>> indices = getRangeGeoPropIndices(*getRangeGeoProperty(m_mesh, range));
    const MutablePtr<Object> source = emptySource(m_mesh);
    for (const Carried& carried : m_carried)
        if (carried.range == range)
            stage(carried, indices.get(), *source);

    const SeamCorners seams = seamCorners(*dataArray<uint>(m_mesh, sFaceVertex),
                                          getElementCount(m_mesh, sPointComp), *indices);
    const MutablePtr<Object> triangles =
        trianglesOf(seams.count, fanTriangles(*dataArray<uint>(m_mesh, sFaceOffset), seams.number));
    Tessary::addDual(*triangles, sPointComp, sFaceVertex, "dual_component", "dual_face_vertex",
                     "dual_face_offset");
    interpolateWith(cut, *source, *triangles, *m_result);
    if (std::find(indices->begin(), indices->end(), kNone) == indices->end())
        return;
    for (const Carried& carried : m_carried)
        if (carried.range == range && getRangeGeoProperty(*m_result, carried.stageRange))
            unsetBesideUnset(carried.stageRange, *m_result);
}

Array<float3> QuadProperties::takePositions()
{
    Array<float3> positions = *dataArray<float3>(*m_result, kPositions);
    m_result->setProperty(kPositions, Any());
    return positions;
}

// Properties that share a range go on to share it as long as their indices are the same, which they
// are if they have equally many values.
String QuadProperties::rangeNameFor(const Carried& carried, const Object& quads) const
{
    const auto first =
        std::find_if(m_carried.begin(), m_carried.end(),
                     [&carried](const Carried& other) { return other.range == carried.range; });
    if (valueCountOf(m_mesh, first->name) == valueCountOf(m_mesh, carried.name))
        return carried.range;
    std::string name = std::string(carried.range.view()) + "_" + carried.name.c_str();
    while (m_mesh.hasProperty(name) || quads.hasProperty(name))
        name += '_';
    return name;
}

void QuadProperties::addTo(Object& quads) const
{
    for (const CarriedProperty& property : m_plan.carried)
        if (property.kind != CarriedProperty::Kind::Values)
            quads.setProperty(property.name, m_mesh.getProperty(property.name));
    for (const Carried& carried : m_carried) {
        const auto property =
            makeMutable<Object>(*getDataGeoProperty(*m_result, carried.stageName));
        const Any mode = getDataGeoProperty(m_mesh, carried.name)->getProperty(sInterp);
        if (!mode.empty())
            property->setProperty(sInterp, mode);
        // A property that is not interpolated comes back plain.
        if (const auto range = getRangeGeoProperty(*m_result, carried.stageRange)) {
            const String rangeName = rangeNameFor(carried, quads);
            quads.setProperty(rangeName, makeMutable<Object>(*range));
            property->setProperty(sTarget, rangeName);
        }
        quads.setProperty(carried.name, property);
    }
}

}  // namespace TessaryMesh
