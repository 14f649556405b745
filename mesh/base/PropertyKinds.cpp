#include "base/PropertyKinds.h"

#include "base/Host.h"

namespace TessaryMesh {

using namespace Korvane::Geometry;

bool isTopology(const String& name)
{
    return name == sPointPosition || name == sFaceOffset || name == sFaceVertex;
}

bool isMeshComponent(const String& name)
{
    return name == sPointComp || name == sFaceComp || name == sFaceVertexComp;
}

std::string elementWord(const String& component)
{
    return component == sPointComp        ? "point"
           : component == sFaceComp       ? "face"
           : component == sFaceVertexComp ? "corner"
                                          : "";
}

bool isComponent(const Object& mesh, const String& name)
{
    Object scratch;  // of which only a component takes an element count
    scratch.setProperty(name, mesh.getProperty(name));
    return setElementCount(name, 0, scratch);
}

bool isOwnValue(const Object& mesh, const String& name)
{
    return name != sRenderSettings && !mesh.getProperty(name).get<Ptr<Object>>();
}

String declaredOwner(const Object& offsets)
{
    const auto names = entryOf<Ptr<Array<String>>>(offsets, sDependsOn);
    if (names && *names)
        for (const String& name : **names)
            if (isMeshComponent(name))
                return name;
    return String();
}

std::optional<ElementProperty> findElementProperty(const Object& mesh, const String& name)
{
    const Ptr<Object> property = getDataGeoProperty(mesh, name);
    if (!property || !Korvane::visitArray(property->getProperty(sData), [](auto&&...) {}))
        return std::nullopt;
    const Array<String> chain = getTargetChain(mesh, name);
    const String component = getTargetComponent(mesh, name);
    const bool hasRange =
        chain.empty() || (chain.size() == 1 && getRangeGeoProperty(mesh, chain[0]));
    if (!isMeshComponent(component) || !hasRange)
        return std::nullopt;
    return ElementProperty{name, chain.empty() ? String() : chain[0], component};
}

}  // namespace TessaryMesh
