#pragma once

/// @file
/// What the templates of Arrays.h stand on; include that header instead.

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <TessaryMesh/Api.h>
#include <TessaryMesh/View.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

namespace TessaryMesh {

/// What has values.
enum class Component { Point, Corner, Face };

/// Whether values are looked at. Sizes are in either case, and values that have to be converted.
enum class Checks {
    All,  ///< whatever the kernels trust their callers with; linear time
    None  ///< the caller knows that it holds: otherwise operations may read outside arrays
};

namespace Internal {

template <class T>
constexpr bool isElement()
{
    return Korvane::anyElementType(
        [](auto tag, const char*) { return std::is_same_v<typename decltype(tag)::type, T>; });
}

// The host's element type of a row; no type for rows of anything else.
template <class Row>
using HostElementOf = std::enable_if_t<isElement<typename ViewOf<Row>::value_type>(),
                                       typename ViewOf<Row>::value_type>;

template <class T>
const char* elementName()
{
    const char* found = "elements of that type";
    Korvane::anyElementType([&found](auto tag, const char* name) {
        constexpr bool isIt = std::is_same_v<typename decltype(tag)::type, T>;
        if (isIt)
            found = name;
        return isIt;
    });
    return found;
}

TESSARY_MESH_API const Pelon::String& componentName(Component component);

// Throws ArrayError unless `count` values can get this name.
TESSARY_MESH_API void checkAttribute(const Korvane::Object& mesh, const Pelon::String& name,
                                     Component on, std::size_t count);

// Stores the indices of an attribute of `valueCount` values, and returns their name.
TESSARY_MESH_API Pelon::String addIndices(Korvane::Object& mesh, const Pelon::String& name,
                                          Component on, const Numbers& indices,
                                          std::size_t valueCount, Checks checks);

// Whether an array with `holders`, one of whom asks, hangs on nothing but this property of this mesh.
TESSARY_MESH_API bool isOnlyHolder(Korvane::Object& mesh, const Pelon::String& name,
                                   std::size_t holders);

// Throws OutOfMemory.
[[noreturn]] TESSARY_MESH_API void throwOutOfMemory(const Pelon::String& name, std::size_t bytes);
// Throws ArrayError, as what follows.
[[noreturn]] TESSARY_MESH_API void throwNullPointer(const Pelon::String& name);
[[noreturn]] TESSARY_MESH_API void throwNoArray(const Korvane::Object& mesh,
                                                const Pelon::String& name, const char* wanted);

// Memory from elsewhere need not be aligned.
template <class T>
Pelon::MutablePtr<Pelon::Array<T>> copied(const T* data, std::size_t size,
                                          const Pelon::String& name)
try {
    auto copy = Pelon::makeMutable<Pelon::Array<T>>(size);
    if constexpr (std::is_trivially_copyable_v<T>)
        std::memcpy(static_cast<void*>(copy->data()), static_cast<const void*>(data),
                    size * sizeof(T));
    else
        std::copy(data, data + size, copy->begin());
    return copy;
} catch (const std::bad_alloc&) {
    throwOutOfMemory(name, size * sizeof(T));
}

// The elements as the host keeps them: in place where they can be borrowed.
template <class T>
Pelon::Ptr<Pelon::Array<T>> hostArray(const View<T>& view, const Pelon::String& name)
{
    if (view.array())
        return view.array();
    if (!view.data() && !view.empty())
        throwNullPointer(name);
    if constexpr (std::is_trivially_copyable_v<T>)
        if (reinterpret_cast<std::uintptr_t>(view.data()) % alignof(T) == 0)
            return Pelon::Array<T>::borrow(view.data(), view.size(), view.owner());
    return copied(view.data(), view.size(), name);
}

template <class T>
Pelon::Ptr<Pelon::Array<T>> requiredArray(const Korvane::Object& mesh, const Pelon::String& name)
{
    Pelon::Ptr<Pelon::Array<T>> array = Korvane::Geometry::dataArray<T>(mesh, name);
    if (!array)
        throwNoArray(mesh, name, elementName<T>());
    return array;
}

}  // namespace Internal
}  // namespace TessaryMesh
