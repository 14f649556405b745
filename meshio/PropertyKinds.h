#pragma once

#include <Korvane/Object.h>
#include <Pelon/String.h>

#include <optional>

/// How the properties of a mesh hang on it, for whoever carries them elsewhere.
namespace MeshIo {

/// Whether `name` is that of the positions, the face offsets or the corners.
bool isTopology(const Pelon::String& name);

/// Whether `name` is that of the component of points, faces or corners.
bool isMeshComponent(const Pelon::String& name);

/// Whether `name` is a value of the object itself, such as "material_library": neither a geometry
/// property nor render settings.
bool isOwnValue(const Korvane::Object& mesh, const Pelon::String& name);

/// A property that gives each point, face or corner a value.
struct ElementProperty {
    Pelon::String name;
    Pelon::String range;  ///< empty where the values are not indexed
    Pelon::String component;
};

/// None for lists, values of other components, chains of indices and unknown element types.
std::optional<ElementProperty> findElementProperty(const Korvane::Object& mesh,
                                                   const Pelon::String& name);

}  // namespace MeshIo
