#include <TessaryMesh/Check.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MeshArrays.h"
#include "base/PropertyKinds.h"
#include "base/Vectors.h"

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

std::string text(const String& name)
{
    return std::string(name.view());
}

PropertyFacts factsOf(const Object& mesh, const String& name)
{
    PropertyFacts facts;
    facts.name = text(name);
    Korvane::visitArray(getDataGeoProperty(mesh, name)->getProperty(sData),
                        [&facts](const auto& array, const char* type) {
                            facts.type = type;
                            facts.values = array->size();
                        });
    const String component = getTargetComponent(mesh, name);
    const std::string element = elementWord(component);
    facts.component = element.empty() ? text(component) : element;
    facts.elements = getElementCount(mesh, component);
    if (const Array<String> chain = getTargetChain(mesh, name); !chain.empty())
        facts.through = text(chain[0]);
    return facts;
}

}  // namespace

double areaOf(const Object& mesh)
{
    const MeshArrays arrays(mesh);
    double area = 0;
    for (std::size_t face = 0; face < arrays.faceCount(); ++face) {
        const uint first = (*arrays.faceOffset)[face];
        const uint count = (*arrays.faceOffset)[face + 1] - first;
        area += length(areaVector(*arrays.points, arrays.faceVertex->data() + first, count)) / 2;
    }
    return area;
}

std::vector<PropertyFacts> propertiesOf(const Object& mesh)
{
    return guarded([&] {
        std::vector<PropertyFacts> properties;
        for (const String& name : mesh.propertyNames())
            if (getDataGeoProperty(mesh, name) && !isTopology(name))
                properties.push_back(factsOf(mesh, name));
        return properties;
    });
}

}  // namespace TessaryMesh
