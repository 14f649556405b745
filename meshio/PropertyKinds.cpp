#include <meshio/PropertyKinds.h>

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>

namespace MeshIo {

using namespace Korvane::Geometry;
using Korvane::Object;
using Pelon::Array;
using Pelon::Ptr;
using Pelon::String;

bool isTopology(const String& name)
{
    return name == sPointPosition || name == sFaceOffset || name == sFaceVertex;
}

bool isMeshComponent(const String& name)
{
    return name == sPointComp || name == sFaceComp || name == sFaceVertexComp;
}

bool isOwnValue(const Object& mesh, const String& name)
{
    return name != sRenderSettings && !mesh.getProperty(name).get<Ptr<Object>>();
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

}  // namespace MeshIo
