#include <Tessary/Triangulation.h>

#include "base/FanTransfer.h"
#include "base/PropertyAccess.h"
#include "properties/ElementTypes.h"
#include "properties/OutputProperty.h"

namespace Tessary {
namespace {

// One named property on its way from the polygon mesh to the triangle mesh.
struct Transfer {
    const Ptr<Array<uint>>& faceOffset;  // may only be missing for points
    const String& name;
    const Object& property;
    const String component;
    Object& target;
};

// An index array on the same way, and the range property that receives it.
struct IndexTransfer {
    const String& rangeName;
    Ptr<Array<uint>> indices;
    Object& range;
};

bool isTopology(const String& name)
{
    return name == Geometry::sPointPosition || name == Geometry::sFaceOffset ||
           name == Geometry::sFaceVertex;
}

template <class T>
bool transferPlain(const Transfer& transfer, const Ptr<Array<T>>& data)
{
    if (transfer.component == Geometry::sPointComp) {
        attachSharedProperty<T>(transfer.component, transfer.name, data,
                                defaultValueOf<T>(transfer.property), transfer.target);
        return true;
    }
    const MutablePtr<Array<T>> out = buildOutputProperty<T>(transfer.component, transfer.property,
                                                            transfer.name, transfer.target);
    if (transfer.component == Geometry::sFaceComp)
        repeatOnTriangles(*transfer.faceOffset, *data, *out);
    else if (transfer.component == Geometry::sFaceVertexComp)
        pickAtCorners(*transfer.faceOffset, *data, *out);
    else
        return false;
    return true;
}

bool transferIndices(const Transfer& transfer, const IndexTransfer& index)
{
    const String& component = transfer.component;
    if (component == Geometry::sPointComp)
        return Geometry::populateRangeGeoProperty(index.indices, component, index.range);
    if (component != Geometry::sFaceComp && component != Geometry::sFaceVertexComp)
        return false;
    // Required: corners follow the rule of faces too, so entry t is the index at the position of
    // triangle t's face, and entries past the triangle count stay unset.
    const MutablePtr<Array<uint>> indices =
        filledArray<uint>(Geometry::getElementCount(transfer.target, component), kNone);
    repeatOnTriangles(*transfer.faceOffset, *index.indices, *indices);
    return Geometry::populateRangeGeoProperty(indices, component, index.range);
}

template <class T>
bool transferIndexed(const Transfer& transfer, const IndexTransfer& index,
                     const Ptr<Array<T>>& values)
{
    attachSharedProperty<T>(index.rangeName, transfer.name, values,
                            defaultValueOf<T>(transfer.property), transfer.target);
    return transferIndices(transfer, index);
}

void copyPlain(const Transfer& transfer, const Any& data)
{
    dispatchOnElementType(ElementTypes(), data, [&transfer](const auto& array) {
        return transferPlain(transfer, array);
    });
}

void copyIndexed(const Object& source, const String& rangeName, const Transfer& transfer,
                 const Any& data)
{
    const Ptr<Object> sourceRange = Geometry::getRangeGeoProperty(source, rangeName);
    if (!sourceRange)
        return;
    const MutablePtr<Object> range = Korvane::createObject();
    const IndexTransfer index{rangeName, Geometry::getRangeGeoPropIndices(*sourceRange), *range};
    bool isCarried = false;
    dispatchOnElementType(ElementTypes(), data, [&](const auto& values) {
        isCarried = true;
        return transferIndexed(transfer, index, values);
    });
    // Required: stored even where the component has no rule, empty then. Not for an element type that
    // is not carried: another property may have brought the range already.
    if (isCarried)
        transfer.target.setProperty(rangeName, range);
}

void copyProperty(const Object& source, const Ptr<Array<uint>>& faceOffset, const String& name,
                  Object& target)
{
    const Ptr<Object> property = Geometry::getDataGeoProperty(source, name);
    if (!property)
        return;
    String component = Geometry::getTargetComponent(source, name);
    if (!faceOffset && component != Geometry::sPointComp)
        return;
    const Transfer transfer{faceOffset, name, *property, std::move(component), target};
    const Any data = property->getProperty(Geometry::sData);
    const Array<String> chain = Geometry::getTargetChain(source, name);
    if (chain.empty())
        copyPlain(transfer, data);
    else if (chain.size() == 1)
        copyIndexed(source, chain[0], transfer, data);
}

}  // namespace

void copyPropertiesToTriangulatedMesh(const Object& source, const Array<String>& propertyNames,
                                      Object& target)
{
    const Ptr<Array<uint>> faceOffset = getDataArray<uint>(source, Geometry::sFaceOffset);
    for (const String& name : propertyNames) {
        if (isTopology(name))
            continue;
        if (name == Geometry::sRenderSettings) {
            Any settings = source.getProperty(name);
            if (!settings.empty())
                target.setProperty(name, std::move(settings));
        } else {
            copyProperty(source, faceOffset, name, target);
        }
    }
}

}  // namespace Tessary
