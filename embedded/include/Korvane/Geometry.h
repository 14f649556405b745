#pragma once

#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <cstdint>

/// @file
/// Geometry objects: property bags in which components carry element counts, data properties carry
/// an array of values for the elements of a component, and range properties carry an index per
/// element through which the values of another property are addressed.
///
/// Mesh layout: point positions are the float3 data of `sPointPosition`. Face f owns the corners
/// faceOffset[f] up to faceOffset[f + 1] (the uint data of `sFaceOffset`, one entry more than there
/// are faces, the first one 0), and corner c names point faceVertex[c] (the uint data of
/// `sFaceVertex`).

namespace Korvane {
namespace Geometry {

namespace Common {

/// What becomes of values between elements.
enum class DataInterpolationMode : std::int32_t {
    Constant = 0,  ///< interpolated, too
    Linear = 1,    ///< interpolated
    None = 2       ///< never interpolated
};

}  // namespace Common

// Names of the properties of a geometry object.
PELON_API extern const Pelon::String sPointPosition;   ///< float3 data of points
PELON_API extern const Pelon::String sPointVelocity;   ///< float3 data of points
PELON_API extern const Pelon::String sFaceOffset;      ///< uint data: where faces' corners begin
PELON_API extern const Pelon::String sFaceVertex;      ///< uint data of corners: their points
PELON_API extern const Pelon::String sPointComp;       ///< the component of points
PELON_API extern const Pelon::String sFaceComp;        ///< the component of faces
PELON_API extern const Pelon::String sFaceVertexComp;  ///< the component of corners
PELON_API extern const Pelon::String sRenderSettings;  ///< a nested object

// Names of the entries of a property.
PELON_API extern const Pelon::String sInterp;     ///< a Common::DataInterpolationMode
PELON_API extern const Pelon::String sDefault;    ///< the value of elements that get none
PELON_API extern const Pelon::String sDependsOn;  ///< an array of names
PELON_API extern const Pelon::String sData;       ///< the array of values
PELON_API extern const Pelon::String sTarget;     ///< the component or range property it belongs to

/// The element count of a component; 0 where `geometry` has no such component.
PELON_API Pelon::uint getElementCount(const Object& geometry, Pelon::StringView component);

/// Sets the element count of an existing component; false where there is none. Arrays that belong
/// to the component are left as they are.
///
/// @param[in]     component  its name
/// @param[in]     count      the new one
/// @param[in,out] geometry   has the component
PELON_API bool setElementCount(Pelon::StringView component, Pelon::uint count, Object& geometry);

/// The component at the end of the property's chain of targets; empty where there is no such
/// property or the chain runs in a circle. A target that `geometry` does not hold counts as a
/// component.
PELON_API Pelon::String getTargetComponent(const Object& geometry, Pelon::StringView property);

/// The names of the properties between `property` and its component, nearest first: none for a
/// plain property, the range property's name for an indexed one.
PELON_API Pelon::Array<Pelon::String> getTargetChain(const Object& geometry,
                                                     Pelon::StringView property);

/// The named data property (a nested object with an `sData` entry), empty if there is none.
PELON_API Pelon::Ptr<Object> getDataGeoProperty(const Object& geometry, Pelon::StringView name);

/// The named range property (a nested object with an index array), empty if there is none.
PELON_API Pelon::Ptr<Object> getRangeGeoProperty(const Object& geometry, Pelon::StringView name);

/// The index array of a range property, shared; empty if it is none.
PELON_API Pelon::Ptr<Pelon::Array<Pelon::uint>> getRangeGeoPropIndices(const Object& rangeProperty);

/// Makes an object a range property.
///
/// @param[in]     indices  shared
/// @param[in]     target   the component, or another range property, that has an index each
/// @param[in,out] object   becomes the property
/// @returns    false where there are no indices
PELON_API bool populateRangeGeoProperty(Pelon::Ptr<Pelon::Array<Pelon::uint>> indices,
                                        Pelon::StringView target, Object& object);

/// Makes an object a component.
///
/// @param[in]     count   of its elements
/// @param[in,out] object  becomes the component
PELON_API void populateComponentGeoProperty(Pelon::uint count, Object& object);

/// Makes an object an empty mesh: its three components with no elements, no points, no corners, and the
/// face offset 0.
///
/// @param[in,out] geometry  its other properties stay
PELON_API void populateMesh(Object& geometry);

/// Makes an object a point cloud.
///
/// @param[in]     positions  shared
/// @param[in,out] geometry   its other properties stay
/// @returns    false where there is no array
PELON_API bool populatePointCloud(Pelon::Ptr<Pelon::Array<Math::float3>> positions,
                                  Object& geometry);

/// A mesh object of these arrays, with element counts to match. Nothing is checked.
PELON_API Pelon::MutablePtr<Object> makeMesh(Pelon::Array<Math::float3> points,
                                             Pelon::Array<Pelon::uint> faceOffset,
                                             Pelon::Array<Pelon::uint> faceVertex);

/// Adds a data property; an earlier property of that name is replaced.
///
/// @param[in,out] geometry       gets the property
/// @param[in]     name           its name
/// @param[in]     component      the component, or the range property, whose elements have values
/// @param[in]     array          the values, shared
/// @param[in]     defaultValue   of elements that get none
/// @param[in]     interpolation  what becomes of values between elements
template <class T>
void addDataGeoProperty(
    Object& geometry, const Pelon::String& name, const Pelon::String& component,
    Pelon::Ptr<Pelon::Array<T>> array, const T& defaultValue = T(),
    Common::DataInterpolationMode interpolation = Common::DataInterpolationMode::Linear)
{
    const Pelon::MutablePtr<Object> property = createObject();
    property->setProperty(sData, std::move(array));
    property->setProperty(sDefault, defaultValue);
    property->setProperty(sInterp, interpolation);
    property->setProperty(sDependsOn, Pelon::makeMutable<Pelon::Array<Pelon::String>>());
    property->setProperty(sTarget, component);
    geometry.setProperty(name, property);
}

/// Adds a range property.
///
/// @param[in,out] geometry   gets the property
/// @param[in]     name       its name
/// @param[in]     component  whose elements have an index each
/// @param[in]     indices    shared
PELON_API void addRangeGeoProperty(Object& geometry, const Pelon::String& name,
                                   const Pelon::String& component,
                                   Pelon::Ptr<Pelon::Array<Pelon::uint>> indices);

/// The data array of the named property as elements of T; empty where there is none of that type.
template <class T>
Pelon::Ptr<Pelon::Array<T>> dataArray(const Object& geometry, Pelon::StringView name)
{
    const Pelon::Ptr<Object> property = getDataGeoProperty(geometry, name);
    if (!property)
        return nullptr;
    const Pelon::Any data = property->getProperty(sData);
    const auto* array = data.get<Pelon::Ptr<Pelon::Array<T>>>();
    return array ? *array : nullptr;
}

}  // namespace Geometry
}  // namespace Korvane
