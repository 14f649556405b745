#pragma once

#include "base/Host.h"
#include "base/Scalars.h"

#include <TessaryMesh/Arrays.h>

#include <optional>
#include <string>

/// Numbers from elsewhere as arrays of the host: in place where that can be, else converted.
namespace TessaryMesh {

/// What is wrong with an array, with its name in front of `message`.
ArrayError arrayError(ArrayError::Code code, const String& array, const std::string& message,
                      std::optional<std::uint64_t> element = std::nullopt, std::string value = {});

/// Throws where 32-bit indices cannot number `count` elements.
void requireNameable(const String& array, std::size_t count);

/// "int32", as messages call it.
const char* typeName(NumberType type);

/// The numbers as elements of T, which consist of numbers of that type.
template <class T>
Ptr<Array<T>> inPlace(const Numbers& numbers, const String& array)
{
    if (const auto* shared = numbers.array().get<Ptr<Array<T>>>())
        return *shared;
    return Internal::hostArray(View<T>(static_cast<const T*>(numbers.data()),
                                       numbers.count() / Scalars<T>::kCount, numbers.owner()),
                               array);
}

/// Three numbers a point, float or double. Here and below, no numbers may be of any type.
Ptr<Array<float3>> toPoints(const Numbers& numbers);

/// Integers of any size that 32 bits without a sign can hold.
Ptr<Array<uint>> toIndices(const Numbers& numbers, const String& array, Checks checks);

}  // namespace TessaryMesh
