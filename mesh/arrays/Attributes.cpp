#include "arrays/Convert.h"
#include "base/Guard.h"
#include "base/Host.h"
#include "base/MessageText.h"
#include "base/PropertyKinds.h"
#include "base/Scalars.h"

#include <TessaryMesh/Arrays.h>

namespace TessaryMesh {

using Code = ArrayError::Code;

namespace {

void requireFreeName(const Object& mesh, const String& name)
{
    if (name.empty() || isTopology(name) || name == Geometry::sRenderSettings ||
        isComponent(mesh, name))
        throw arrayError(Code::Reserved, name, "the mesh needs this name for itself; use another");
}

void requireCount(const Object& mesh, const String& name, Component on, std::size_t count)
{
    const String& component = Internal::componentName(on);
    const std::size_t elements = Geometry::getElementCount(mesh, component);
    if (count != elements)
        throw arrayError(Code::Length, name,
                         std::to_string(count) + " values for the " + std::to_string(elements) +
                             " " + elementWord(component) + "s of the mesh");
}

// The element type of `width` numbers, the vector before the matrix: that is their order in the host.
template <class T>
bool consistsOf(NumberType type, unsigned width)
{
    if constexpr (std::is_same_v<T, String>)
        return false;
    else
        return Scalars<T>::kCount == width &&
               Internal::numberType<typename Scalars<T>::Type>() == type;
}

// Calls use(array) with the numbers as elements of the host.
template <class Use>
void asHostArray(const Numbers& values, unsigned width, const String& name, const Use& use)
{
    if (width == 0)
        width = values.width();
    if (values.count() % width != 0)
        throw arrayError(Code::Length, name,
                         std::to_string(values.count()) + " numbers are no elements of " +
                             std::to_string(width) + " each");
    const bool isKnown = Korvane::anyElementType([&](auto tag, const char*) {
        using T = typename decltype(tag)::type;
        if (!consistsOf<T>(values.type(), width))
            return false;
        if constexpr (!std::is_same_v<T, String>)
            use(inPlace<T>(values, name));
        return true;
    });
    if (!isKnown)
        throw arrayError(Code::Type, name,
                         "there is no element type of " + std::to_string(width) + " " +
                             typeName(values.type()) + " numbers");
}

void requireInside(const Array<uint>& indices, std::size_t valueCount, const String& array)
{
    for (std::size_t i = 0; i < indices.size(); ++i)
        if (indices[i] >= valueCount && indices[i] != kNone)
            throw arrayError(Code::Value, array,
                             "index " + std::to_string(i) + " is " + std::to_string(indices[i]) +
                                 ", where there are " + std::to_string(valueCount) + " values",
                             i, std::to_string(indices[i]));
}

}  // namespace

namespace Internal {

const String& componentName(Component component)
{
    switch (component) {
        case Component::Point:
            return Geometry::sPointComp;
        case Component::Corner:
            return Geometry::sFaceVertexComp;
        default:
            return Geometry::sFaceComp;
    }
}

void checkAttribute(const Object& mesh, const String& name, Component on, std::size_t count)
{
    requireFreeName(mesh, name);
    if (Geometry::getRangeGeoProperty(mesh, name))
        throw arrayError(Code::Reserved, name,
                         "the indices of an attribute have this name; use another");
    requireCount(mesh, name, on, count);
}

String addIndices(Object& mesh, const String& name, Component on, const Numbers& indices,
                  std::size_t valueCount, Checks checks)
{
    String range = std::string(name.view()) + "_index";
    requireFreeName(mesh, name);
    requireFreeName(mesh, range);
    if (Geometry::getDataGeoProperty(mesh, range))
        throw arrayError(
            Code::Reserved, range,
            "an attribute has this name, which the indices of " + quoted(name.view()) + " need");
    requireNameable(name, valueCount);
    requireCount(mesh, range, on, indices.count());
    Ptr<Array<uint>> array = guarded([&] { return toIndices(indices, range, checks); });
    if (checks == Checks::All)
        requireInside(*array, valueCount, range);
    Geometry::addRangeGeoProperty(mesh, range, componentName(on), std::move(array));
    return range;
}

bool isOnlyHolder(Object& mesh, const String& name, std::size_t holders)
{
    String nameToPutBack = name;
    Any property = mesh.getPropertyForModification(name);
    const bool isUnshared = property.get<Ptr<Object>>()->useCount() == 1;
    mesh.storeProperty(std::move(nameToPutBack), std::move(property));
    return isUnshared && holders == 2;  // the property, and who asks
}

void throwOutOfMemory(const String& name, std::size_t bytes)
{
    throw OutOfMemory("", "a copy of " + quoted(name.view()) + " needs more memory than there is",
                      static_cast<double>(bytes));
}

void throwNullPointer(const String& name)
{
    throw arrayError(Code::Missing, name, "the pointer to its elements is null");
}

void throwNoArray(const Object& mesh, const String& name, const char* wanted)
{
    const Ptr<Object> property = Geometry::getDataGeoProperty(mesh, name);
    if (!property)
        throw arrayError(Code::Missing, name, "the mesh has no attribute of this name");
    std::string found = "something else";
    Korvane::visitArray(property->getProperty(Geometry::sData),
                        [&found](const auto&, const char* type) { found = type; });
    throw arrayError(Code::Type, name, "its elements are " + found + ", not " + wanted);
}

}  // namespace Internal

void addAttribute(Object& mesh, const String& name, Component on, const Numbers& values,
                  unsigned width)
{
    guarded([&] {
        asHostArray(values, width, name,
                    [&](auto array) { addAttribute(mesh, name, on, std::move(array)); });
    });
}

void addIndexedAttribute(Object& mesh, const String& name, Component on, const Numbers& values,
                         unsigned width, const Numbers& indices, Checks checks)
{
    guarded([&] {
        asHostArray(values, width, name, [&](auto array) {
            addIndexedAttribute(mesh, name, on, std::move(array), indices, checks);
        });
    });
}

View<uint> indicesOf(const Object& mesh, const String& name)
{
    if (!Geometry::getDataGeoProperty(mesh, name))
        throw arrayError(Code::Missing, name, "the mesh has no attribute of this name");
    const Array<String> chain = Geometry::getTargetChain(mesh, name);
    if (chain.empty())
        return {};
    const Ptr<Object> range = Geometry::getRangeGeoProperty(mesh, chain[0]);
    return range ? Geometry::getRangeGeoPropIndices(*range) : nullptr;
}

View<float3> pointsOf(const Object& mesh)
{
    return view<float3>(mesh, Geometry::sPointPosition);
}

View<uint> cornersOf(const Object& mesh)
{
    return view<uint>(mesh, Geometry::sFaceVertex);
}

View<uint> offsetsOf(const Object& mesh)
{
    return view<uint>(mesh, Geometry::sFaceOffset);
}

Array<float3> takePoints(Object& mesh)
{
    return take<float3>(mesh, Geometry::sPointPosition);
}

Array<uint> takeCorners(Object& mesh)
{
    return take<uint>(mesh, Geometry::sFaceVertex);
}

Array<uint> takeOffsets(Object& mesh)
{
    return take<uint>(mesh, Geometry::sFaceOffset);
}

}  // namespace TessaryMesh
