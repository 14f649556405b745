#include "ops/PropertyPlan.h"

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MessageText.h"

#include <optional>
#include <set>
#include <unordered_map>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;
using Kind = CarriedProperty::Kind;

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

bool isData(const Object& mesh, const String& name)
{
    return getDataGeoProperty(mesh, name) && !isTopology(name) && !isOffsets(mesh, name);
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

class Planner {
public:
    Planner(const Object& mesh, Onto onto) : m_mesh(mesh), m_onto(onto)
    {
        for (const String& name : mesh.propertyNames())
            if (const auto target = targetOf(mesh, name); target && dataArray<uint>(mesh, name))
                m_offsets.emplace(*target, name);  // unless an earlier one is there
    }

    void addValue(const String& name)
    {
        if (name == "subdivision_tags" && !tagsFollow())
            leaveOut("value", name);
        else
            add({name, String(), String()}, Kind::OwnValue);
    }

    void addProperty(const String& name)
    {
        if (name == sRenderSettings)
            add({name, String(), String()}, Kind::RenderSettings);
        else if (isData(m_mesh, name) && m_onto == Onto::Triangles)
            addToTriangles(name);
        else if (isData(m_mesh, name))
            addElement(name, "property");
    }

    PropertyPlan take() { return std::move(m_plan); }

private:
    // They number points, which only triangles keep, but holes are faces.
    bool tagsFollow() const
    {
        const Any value = m_mesh.getProperty("subdivision_tags");
        const String* const tags = value.get<String>();
        return m_onto == Onto::Triangles && tags &&
               ("\n" + std::string(tags->view())).find("\nhole") == std::string::npos;
    }

    void add(const ElementProperty& property, Kind kind)
    {
        m_plan.carried.push_back({property, kind});
    }

    void leaveOut(const std::string& kind, const String& name)
    {
        constexpr const char* kOnto[] = {"triangles", "quads", "samples"};
        m_plan.warnings.push_back(kind + " " + quoted(name.view()) + " does not follow onto " +
                                  kOnto[static_cast<int>(m_onto)] + " and is left out");
    }

    void addElement(const String& name, const char* kind)
    {
        if (const auto property = findElementProperty(m_mesh, name))
            add(*property, Kind::Values);
        else
            leaveOut(kind, name);
    }

    void addToTriangles(const String& name)
    {
        const Array<String> chain = getTargetChain(m_mesh, name);
        const String component = getTargetComponent(m_mesh, name);
        if (!chain.empty())
            addIndexed(name, chain, component);
        else if (!isMeshComponent(component))
            addList(name, component);
        else
            addElement(name, "property of an unknown element type");
    }

    // Shared values may be of any type.
    void addIndexed(const String& name, const Array<String>& chain, const String& component)
    {
        const bool follows = chain.size() == 1 && getRangeGeoProperty(m_mesh, chain[0]) &&
                             isMeshComponent(component);
        if (follows)
            add({name, chain[0], component}, Kind::Values);
        else
            leaveOut("indexed property", name);
    }

    void addList(const String& name, const String& component)
    {
        const auto offsets = m_offsets.find(name);
        if (offsets == m_offsets.end())
            leaveOut("property", name);
        else if (isPointList(m_mesh, offsets->second))
            add({name, offsets->second, component}, Kind::PointList);
        else
            leaveOut("list property", name);
    }

    const Object& m_mesh;
    Onto m_onto;
    std::unordered_map<String, String> m_offsets;  // by the list or other property that they name
    PropertyPlan m_plan;
};

}  // namespace

PropertyPlan planProperties(const Object& mesh, const Carry& carry, Onto onto)
{
    const std::set<String> named(carry.names().begin(), carry.names().end());
    Planner planner(mesh, onto);
    for (const String& name : mesh.propertyNames())
        if (isOwnValue(mesh, name))
            planner.addValue(name);
        else if (carry.isAll() || named.count(name))
            planner.addProperty(name);
    return planner.take();
}

Array<String> carriedPropertyNames(const Object& mesh)
{
    return guarded([&] {
        Array<String> names;
        for (const String& name : mesh.propertyNames())
            if (isData(mesh, name) || name == sRenderSettings)
                names.push_back(name);
        return names;
    });
}

}  // namespace TessaryMesh
