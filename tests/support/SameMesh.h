#pragma once

// Whether two meshes are the same, bit for bit.

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Korvane/Object.h>

#include <cstring>
#include <string>
#include <type_traits>

namespace MeshFiles {

template <class T>
bool sameBits(const Pelon::Array<T>& a, const Pelon::Array<T>& b)
{
    if constexpr (std::is_trivially_copyable_v<T>)
        return a.size() == b.size() &&
               (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
    else
        return a == b;
}

inline bool sameArrays(const Pelon::Any& a, const Pelon::Any& b)
{
    bool same = false;
    Korvane::visitArray(a, [&](const auto& array, const char*) {
        const auto* const other = b.get<std::decay_t<decltype(array)>>();
        same = other && sameBits(*array, **other);
    });
    return same;
}

inline std::string textOf(const Pelon::Any& value)
{
    return value.get<Pelon::String>() ? value.get<Pelon::String>()->c_str() : "";
}

/// Whether property `name` holds the same values, bit for bit, for the same elements.
inline bool sameProperty(const Korvane::Object& a, const Korvane::Object& b,
                         const Pelon::String& name)
{
    using namespace Korvane::Geometry;
    if (textOf(a.getProperty(name)) != textOf(b.getProperty(name)) ||
        getElementCount(a, name) != getElementCount(b, name) ||
        !(getTargetChain(a, name) == getTargetChain(b, name)) ||
        getTargetComponent(a, name) != getTargetComponent(b, name))
        return false;
    const auto dataA = getDataGeoProperty(a, name), dataB = getDataGeoProperty(b, name);
    if (bool(dataA) != bool(dataB) ||
        (dataA && !sameArrays(dataA->getProperty(sData), dataB->getProperty(sData))))
        return false;
    const auto rangeA = getRangeGeoProperty(a, name), rangeB = getRangeGeoProperty(b, name);
    return bool(rangeA) == bool(rangeB) &&
           (!rangeA || *getRangeGeoPropIndices(*rangeA) == *getRangeGeoPropIndices(*rangeB));
}

/// The name of the first property that differs, "" for equal meshes.
inline std::string firstDifference(const Korvane::Object& a, const Korvane::Object& b)
{
    const auto names = a.propertyNames();
    if (!(names == b.propertyNames()))
        return "the list of properties";
    for (const Pelon::String& name : names)
        if (!sameProperty(a, b, name))
            return name.c_str();
    return "";
}

}  // namespace MeshFiles
