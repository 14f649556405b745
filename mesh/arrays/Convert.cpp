#include "arrays/Convert.h"

#include "base/Host.h"
#include "base/MessageText.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

namespace TessaryMesh {
namespace {

using Code = ArrayError::Code;

// Memory from elsewhere need not be aligned, nor written as this type of that size.
template <class S>
S load(const void* data, std::size_t i)
{
    S value;
    std::memcpy(&value, static_cast<const unsigned char*>(data) + i * sizeof(S), sizeof(S));
    return value;
}

template <class S>
std::string textOf(S value)
{
    std::ostringstream text;
    text.precision(std::numeric_limits<S>::max_digits10);
    text << +value;
    return text.str();
}

template <class S>
bool isIndex(S value)
{
    if constexpr (std::is_signed_v<S>)
        if (value < 0)
            return false;
    return static_cast<std::uint64_t>(value) <= 0xFFFFFFFF;
}

// Infinite ones are the business of whoever checks points.
bool isFloat(double value)
{
    return !(std::fabs(value) > std::numeric_limits<float>::max()) || std::isinf(value);
}

template <class S>
[[noreturn]] void throwNoIndex(const Numbers& numbers, const String& array)
{
    std::size_t i = 0;
    while (isIndex(load<S>(numbers.data(), i)))
        ++i;
    const S value = load<S>(numbers.data(), i);
    const std::string text = textOf(value);
    throw arrayError(Code::Value, array,
                     "number " + std::to_string(i) + " is " + text +
                         (value < S{0} ? ", which is negative" : ", which is over 4294967295"),
                     i, text);
}

// Looks at all of them without a branch, and for the culprit only where there is one.
template <class S>
void requireIndices(const Numbers& numbers, const String& array)
{
    bool areIndices = true;
    for (std::size_t i = 0; i < numbers.count(); ++i)
        areIndices &= isIndex(load<S>(numbers.data(), i));
    if (!areIndices)
        throwNoIndex<S>(numbers, array);
}

template <class S>
Ptr<Array<uint>> convertedIndices(const Numbers& numbers, const String& array)
{
    if (!numbers.data() && numbers.count() > 0)
        Internal::throwNullPointer(array);
    requireIndices<S>(numbers, array);
    const auto indices = makeMutable<Array<uint>>(numbers.count());
    uint* const out = indices->data();
    for (std::size_t i = 0; i < numbers.count(); ++i)
        out[i] =
            static_cast<uint>(static_cast<std::make_unsigned_t<S>>(load<S>(numbers.data(), i)));
    return indices;
}

[[noreturn]] void throwNoFloat(const Numbers& numbers)
{
    std::size_t i = 0;
    while (isFloat(load<double>(numbers.data(), i)))
        ++i;
    const std::string text = textOf(load<double>(numbers.data(), i));
    throw arrayError(Code::Value, "points",
                     "the " + std::string(1, "xyz"[i % 3]) + " of point " + std::to_string(i / 3) +
                         " is " + text + ", which is more than a float can hold",
                     i, text);
}

Ptr<Array<float3>> roundedPoints(const Numbers& numbers)
{
    if (!numbers.data() && numbers.count() > 0)
        Internal::throwNullPointer("points");
    const auto points = makeMutable<Array<float3>>(numbers.count() / 3);
    bool areFloats = true;
    for (std::size_t p = 0; p < points->size(); ++p) {
        const auto x = load<double3>(numbers.data(), p);
        for (const double number : {x.x, x.y, x.z})
            areFloats &= isFloat(number);
        (*points)[p] = {static_cast<float>(x.x), static_cast<float>(x.y), static_cast<float>(x.z)};
    }
    if (!areFloats)
        throwNoFloat(numbers);
    return points;
}

}  // namespace

ArrayError arrayError(Code code, const String& array, const std::string& message,
                      std::optional<std::uint64_t> element, std::string value)
{
    return {code, std::string(array.view()), quoted(array.view()) + ": " + message, element,
            std::move(value)};
}

void requireNameable(const String& array, std::size_t count)
{
    if (count >= kNone)
        throw arrayError(Code::TooLarge, array,
                         std::to_string(count) +
                             " elements are more than 32-bit indices can name; split the mesh");
}

const char* typeName(NumberType type)
{
    static constexpr const char* kNames[] = {"int8",  "int16",  "int32",  "int64",
                                             "uint8", "uint16", "uint32", "uint64",
                                             "bool",  "float",  "double"};
    return kNames[static_cast<std::size_t>(type)];
}

Ptr<Array<float3>> toPoints(const Numbers& numbers)
{
    if (numbers.count() == 0)
        return makeMutable<Array<float3>>();
    if (numbers.width() != 1 && numbers.width() != 3)
        throw arrayError(
            Code::Type, "points",
            "vectors of " + std::to_string(numbers.width()) + " numbers, where points have 3");
    if (numbers.count() % 3 != 0)
        throw arrayError(Code::Length, "points",
                         std::to_string(numbers.count()) + " numbers are no points of 3 each");
    requireNameable("points", numbers.count() / 3);
    switch (numbers.type()) {
        case NumberType::Float32:
            return inPlace<float3>(numbers, "points");
        case NumberType::Float64:
            return roundedPoints(numbers);
        default:
            throw arrayError(Code::Type, "points",
                             std::string(typeName(numbers.type())) +
                                 " numbers, where points are float or double");
    }
}

Ptr<Array<uint>> toIndices(const Numbers& numbers, const String& array, Checks checks)
{
    if (numbers.count() == 0)
        return makeMutable<Array<uint>>();
    switch (numbers.type()) {
        case NumberType::Int8:
            return convertedIndices<std::int8_t>(numbers, array);
        case NumberType::Int16:
            return convertedIndices<std::int16_t>(numbers, array);
        case NumberType::Int64:
            return convertedIndices<std::int64_t>(numbers, array);
        case NumberType::UInt8:
            return convertedIndices<std::uint8_t>(numbers, array);
        case NumberType::UInt16:
            return convertedIndices<std::uint16_t>(numbers, array);
        case NumberType::UInt64:
            return convertedIndices<std::uint64_t>(numbers, array);
        case NumberType::UInt32:
            return inPlace<uint>(numbers, array);
        case NumberType::Int32: {
            Ptr<Array<uint>> indices = inPlace<uint>(numbers, array);
            if (checks == Checks::All)
                requireIndices<std::int32_t>(numbers, array);
            return indices;
        }
        default:
            throw arrayError(
                Code::Type, array,
                std::string(typeName(numbers.type())) + " numbers, where indices are integers");
    }
}

}  // namespace TessaryMesh
