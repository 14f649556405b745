#include <Tessary/CutMesh.h>

#include "base/PropertyAccess.h"
#include "cutmesh/CutMesh.h"
#include "properties/ElementTypes.h"
#include "properties/OutputProperty.h"

namespace Tessary {
namespace {

using Mode = Geometry::Common::DataInterpolationMode;

constexpr Mode kNotInterpolated = static_cast<Mode>(2);

// The cut mesh has its own.
bool isGeometry(const String& name)
{
    return name == Geometry::sPointPosition || name == Geometry::sPointVelocity ||
           name == Geometry::sFaceOffset || name == Geometry::sFaceVertex;
}

bool isInterpolated(const Object& property)
{
    const Any mode = property.getProperty(Geometry::sInterp);
    return !mode.get<Mode>() || *mode.get<Mode>() != kNotInterpolated;
}

// The property with its default for every element of its component.
void declareProperty(const CutTransfer& transfer)
{
    dispatchOnElementType(ElementTypes(), transfer.property.getProperty(Geometry::sData),
                          [&transfer](const auto& data) {
                              using T = typename std::decay_t<decltype(*data)>::value_type;
                              buildOutputProperty<T>(transfer.component, transfer.property,
                                                     transfer.name, transfer.cut.target);
                              return true;
                          });
}

void interpolateProperty(CutMesh& cut, const String& name)
{
    const Ptr<Object> property = Geometry::getDataGeoProperty(cut.source, name);
    if (!property)
        return;
    const CutTransfer transfer{cut, name, *property, Geometry::getTargetComponent(cut.source, name),
                               Geometry::getTargetChain(cut.source, name)};
    const Any defaultValue = property->getProperty(Geometry::sDefault);
    const bool isDone = isInterpolated(*property) && (blendProperty(transfer, defaultValue) ||
                                                      pickProperty(transfer, defaultValue));
    if (!isDone)
        declareProperty(transfer);
}

}  // namespace

void interpolatePropertiesToCutMesh(const Object& source, const Array<float>& triangleWeights,
                                    const Array<float>& edgeWeights, const Object& triMesh,
                                    const Array<uint>& cutPointIds,
                                    const Array<uint>& cutPointOrigins, Object& target)
{
    CutMesh cut{source,
                target,
                {edgeWeights.data(), triangleWeights.data()},
                cutPointIds,
                cutPointOrigins,
                getDataArray<uint>(source, Geometry::sFaceOffset),
                getDataArray<uint>(triMesh, Geometry::sFaceVertex),
                getDataArray<uint>(triMesh, "dual_face_offset"),
                getDataArray<uint>(triMesh, "dual_face_vertex"),
                std::nullopt};
    for (const String& name : source.propertyNames()) {
        if (name == Geometry::sRenderSettings)
            target.setProperty(name, source.getProperty(name));
        else if (!isGeometry(name))
            interpolateProperty(cut, name);
    }
}

}  // namespace Tessary
