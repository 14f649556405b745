#pragma once

// How a property of an output object comes to be: built with an array of its own, or attached to an
// array that somebody else holds too.

#include "base/ParallelLoop.h"
#include "base/PropertyAccess.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace Tessary {

/// An array of `count` elements equal to `value`, its memory first touched in parallel.
template <class T>
MutablePtr<Array<T>> filledArray(uint count, const T& value)
{
    if constexpr (!std::is_trivially_copyable_v<T>) {
        return makeMutable<Array<T>>(count, value);
    } else {
        MutablePtr<Array<T>> array = makeMutable<Array<T>>(count);
        // Compared as bytes: -0.0 is equal to 0.0 and yet not zero.
        const unsigned char zeros[sizeof(T)] = {};
        if (std::memcmp(&value, zeros, sizeof(T)) != 0)
            parallelLoop(
                0, count, 1, LoopContext::Isolated,
                [&array, &value](uint begin, uint end) {
                    std::fill(array->begin() + begin, array->begin() + end, value);
                },
                kFewCopies);
        return array;
    }
}

/// The default value of a property as T; zero where it is missing or of another type.
template <class T>
T defaultValueOf(const Object& property)
{
    return valueOr<T>(property, Geometry::sDefault, T());
}

/// Builds the property `name` of `target` for a component, with an array as long as the component,
/// filled with the source's default value, and returns the array for writing.
///
/// The source's default and interpolation are taken over (mode 1 where it has none), what it
/// depends on is not. The property holds the array from the start, so a gather that throws leaves
/// what it has written.
template <class T>
MutablePtr<Array<T>> buildOutputProperty(const String& component, const Object& source,
                                         const String& name, Object& target)
{
    Modification<Object> modified(target, name);
    Object& property = *modified.valueOrMade(Korvane::createObject);
    const T defaultValue = defaultValueOf<T>(source);
    property.setProperty(Geometry::sDefault, defaultValue);
    clearDependsOn(property);
    MutablePtr<Array<T>> data =
        filledArray<T>(Geometry::getElementCount(target, component), defaultValue);
    property.setProperty(Geometry::sData, data);
    property.setProperty(Geometry::sTarget, component);
    if (source.hasProperty(Geometry::sInterp))
        property.setProperty(Geometry::sInterp, source.getProperty(Geometry::sInterp));
    else
        setDefaultInterpolation(property);
    if (!name.empty())
        modified.store();
    return data;
}

/// Makes `data` itself, shared, the array of property `name` of `target`. `attachedTo` is the
/// component or, for an indexed property, the range property. The interpolation mode becomes 1.
template <class T>
void attachSharedProperty(const String& attachedTo, const String& name, Ptr<Array<T>> data,
                          const T& defaultValue, Object& target)
{
    Modification<Object> modified(target, name);
    Object& property = *modified.valueOrMade(Korvane::createObject);
    property.setProperty(Geometry::sDefault, defaultValue);
    clearDependsOn(property);
    property.setProperty(Geometry::sData, std::move(data));
    property.setProperty(Geometry::sTarget, attachedTo);
    setDefaultInterpolation(property);
    if (!name.empty())
        modified.store();
}

}  // namespace Tessary
