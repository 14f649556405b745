#pragma once

#include <Korvane/Math.h>
#include <Pelon/Any.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

/// @file
/// The element types of geometry properties.

namespace Korvane {

/// Stands for a type as a value.
template <class T>
struct TypeTag {
    using type = T;  ///< that type
};

/// Calls `f(TypeTag<T>(), "name of T")` for every element type that geometry properties of this
/// host may have, until a call returns true; returns whether one did.
template <class F>
constexpr bool anyElementType(F&& f)
{
    using namespace Math;
#define KORVANE_MATH(T) f(TypeTag<T>(), #T)
    return f(TypeTag<signed char>(), "char") || f(TypeTag<short>(), "short") ||
           f(TypeTag<int>(), "int") || f(TypeTag<long long>(), "long") ||
           f(TypeTag<unsigned char>(), "uchar") || f(TypeTag<unsigned short>(), "ushort") ||
           f(TypeTag<unsigned int>(), "uint") || f(TypeTag<unsigned long long>(), "ulong") ||
           f(TypeTag<bool>(), "bool") || f(TypeTag<Pelon::String>(), "string") ||
           f(TypeTag<float>(), "float") || f(TypeTag<double>(), "double") ||  //
           KORVANE_MATH(int2) || KORVANE_MATH(int3) || KORVANE_MATH(int2x2) ||
           KORVANE_MATH(int2x3) || KORVANE_MATH(float2) || KORVANE_MATH(float3) ||
           KORVANE_MATH(float4) || KORVANE_MATH(float2x2) || KORVANE_MATH(float2x3) ||
           KORVANE_MATH(float3x3) || KORVANE_MATH(float4x4) || KORVANE_MATH(double2) ||
           KORVANE_MATH(double3) || KORVANE_MATH(double4) || KORVANE_MATH(double2x2) ||
           KORVANE_MATH(double2x3) || KORVANE_MATH(double3x3) || KORVANE_MATH(double4x4) ||
           KORVANE_MATH(short2) || KORVANE_MATH(short3) || KORVANE_MATH(short2x2) ||
           KORVANE_MATH(short2x3) || KORVANE_MATH(uchar3) || KORVANE_MATH(uchar4);
#undef KORVANE_MATH
}

/// Calls `f(array, "name of its element type")` with the array of known element type that `value`
/// holds, a `const Pelon::Ptr<Pelon::Array<T>>&`; returns whether it held one.
template <class F>
bool visitArray(const Pelon::Any& value, F&& f)
{
    return anyElementType([&](auto tag, const char* typeName) {
        using T = typename decltype(tag)::type;
        const auto* array = value.get<Pelon::Ptr<Pelon::Array<T>>>();
        if (!array || !*array)
            return false;
        f(*array, typeName);
        return true;
    });
}

}  // namespace Korvane
