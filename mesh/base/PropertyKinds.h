#pragma once

#include "base/Host.h"

#include <optional>
#include <string>

/// How the properties of a mesh hang on it, for whoever carries them elsewhere.
namespace TessaryMesh {

/// Whether `name` is that of the positions, the face offsets or the corners.
bool isTopology(const String& name);

/// Whether `name` is that of the component of points, faces or corners.
bool isMeshComponent(const String& name);

/// "point", "face" or "corner" for the elements of these components; empty for others.
std::string elementWord(const String& component);

/// Whether `name` is any component of the mesh.
bool isComponent(const Object& mesh, const String& name);

/// Whether `name` is a value of the object itself, such as "material_library": neither a geometry
/// property nor render settings.
bool isOwnValue(const Object& mesh, const String& name);

/// An entry of a property; none where there is none of that type.
template <class T>
std::optional<T> entryOf(const Object& property, const String& entry)
{
    const Any value = property.getProperty(entry);
    const T* const typed = value.get<T>();
    return typed ? std::optional<T>(*typed) : std::nullopt;
}

/// The first component of a mesh that a list's offsets depend on, which is whose lists they are; empty
/// where they name none.
String declaredOwner(const Object& offsets);

/// A property that gives each point, face or corner a value.
struct ElementProperty {
    String name;
    String range;  ///< empty where the values are not indexed
    String component;
};

/// None for lists, values of other components, chains of indices and unknown element types.
std::optional<ElementProperty> findElementProperty(const Object& mesh, const String& name);

}  // namespace TessaryMesh
