#pragma once

// The element types that properties are carried with, and the dispatch over them.

#include "base/Host.h"

namespace Tessary {

template <class... T>
struct TypeList {};

template <class T>
struct TypeTag {
    using type = T;
};

// The order is the order in which the types are tried, and part of the library's behaviour.
using ElementTypes =
    TypeList<signed char, short, int, long long, unsigned char, unsigned short, unsigned int,
             unsigned long long, bool, String, float, double, Korvane::Math::int2,
             Korvane::Math::int2x2, Korvane::Math::int2x3, Korvane::Math::int3,
             Korvane::Math::float2, Korvane::Math::float4, Korvane::Math::float3,
             Korvane::Math::float2x2, Korvane::Math::float2x3, Korvane::Math::float3x3,
             Korvane::Math::float4x4, Korvane::Math::double2, Korvane::Math::double3,
             Korvane::Math::double4, Korvane::Math::double2x2, Korvane::Math::double2x3,
             Korvane::Math::double3x3, Korvane::Math::double4x4, Korvane::Math::short2,
             Korvane::Math::short2x2, Korvane::Math::short2x3, Korvane::Math::short3,
             Korvane::Math::uchar3, Korvane::Math::uchar4>;

template <class T, class Routine>
bool tryElementType(const Any& data, bool& result, const Routine& routine)
{
    const auto* const array = data.get<Ptr<Array<T>>>();
    if (!array || !*array)
        return false;
    result = routine(*array);
    return true;
}

/// Calls `routine(array)` with the `const Ptr<Array<T>>&` that `data` holds, for the first type of
/// the list that matches, and returns its result; false where none matches.
template <class Routine, class... T>
bool dispatchOnElementType(TypeList<T...>, const Any& data, const Routine& routine)
{
    bool result = false;
    (tryElementType<T>(data, result, routine) || ...);
    return result;
}

}  // namespace Tessary
