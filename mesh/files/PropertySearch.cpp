#include "files/PropertySearch.h"

#include "base/MessageText.h"
#include "base/PropertyKinds.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

// "point property "color" (float3)"; `isForPly` where PLY has a form for such elements.
std::string dataText(const Object& mesh, const String& name, const Object& property, bool& isForPly)
{
    std::string type = "of another type";
    Korvane::visitArray(property.getProperty(Geometry::sData),
                        [&](const auto&, const char* typeName) {
                            type = typeName;
                            isForPly = type != "string" && type != "long" && type != "ulong";
                        });
    const std::string element = elementWord(Geometry::getTargetComponent(mesh, name));
    return element + (element.empty() ? "" : " ") + "property \"" + std::string(name.view()) +
           "\" (" + type + ")";
}

}  // namespace

std::optional<String> PropertySearch::findText(const char* name)
{
    const Any value = m_mesh.getProperty(name);
    const String* const text = value.get<String>();
    if (!text)
        return std::nullopt;
    m_handled.insert(name);
    return *text;
}

std::vector<std::string> PropertySearch::leftOut() const
{
    std::vector<std::string> warnings;
    for (const String& name : m_mesh.propertyNames()) {
        const bool isHandled = m_handled.count(name.c_str()) > 0;
        if (isTopology(name) || isHandled || isComponent(m_mesh, name))
            continue;
        const std::string warning = describe(name);
        if (!warning.empty())
            warnings.push_back(warning);
    }
    return warnings;
}

std::string PropertySearch::describe(const String& name) const
{
    const std::string left = " cannot be held by " + m_format + " and is left out";
    if (const auto property = Geometry::getDataGeoProperty(m_mesh, name)) {
        bool isForPly = false;
        const std::string text = dataText(m_mesh, name, *property, isForPly);
        return text + left + (isForPly ? "; write PLY to keep it" : "");
    }
    const std::string quotedName = "\"" + std::string(name.view()) + "\"";
    if (!Geometry::getRangeGeoProperty(m_mesh, name))
        return "value " + quotedName + left;
    return isTarget(name) ? "" : "index array " + quotedName + left;
}

// The property that targets a range property is mentioned or written with it.
bool PropertySearch::isTarget(const String& range) const
{
    const Array<String> names = m_mesh.propertyNames();
    return std::any_of(names.begin(), names.end(), [&](const String& name) {
        const Array<String> chain = Geometry::getTargetChain(m_mesh, name);
        return std::find(chain.begin(), chain.end(), range) != chain.end();
    });
}

}  // namespace TessaryMesh
