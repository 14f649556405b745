#pragma once

#include "base/Scalars.h"
#include "files/ArrayShape.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace TessaryMesh {

/// What the head of a .npy file says of the array behind it.
struct NpyHeader {
    bool isSwapped = false;  ///< the bytes of numbers stand the other way round
    char kind = 'u';  ///< 'b' bool, 'i' 'u' integers, 'f' floats, 'U' 'S' texts; else unknown
    std::size_t itemSize = 0;  ///< in bytes, of a text as of a number
    bool isFortran = false;    ///< the first index runs fastest
    Shape shape;
    std::string type;  ///< as it stands there: "<f4"

    /// Of all items; no more than 2^62.
    std::size_t count() const;
};

/// The size of what stands in front of the dictionary, by the first 12 bytes; 0 where these are no .npy file.
std::size_t npyPrefixSize(std::string_view begin);
/// The size of the dictionary.
std::size_t npyDictionarySize(std::string_view begin);

/// False where the dictionary is none, or of a kind that no array of one type has.
bool parseNpyDictionary(std::string_view text, NpyHeader& header);

/// The head of a .npy file of version 1.0, filled with blanks to a multiple of 64.
std::string npyHeader(const std::string& type, const Shape& shape);

/// "<f4": how numbers of the type lie in memory.
template <class S>
std::string npyType()
{
    constexpr char kKind = std::is_same_v<S, bool>       ? 'b'
                           : std::is_floating_point_v<S> ? 'f'
                           : std::is_signed_v<S>         ? 'i'
                                                         : 'u';
    constexpr bool kIsLittle = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
    return (sizeof(S) == 1 ? "|" : kIsLittle ? "<" : ">") + (kKind + std::to_string(sizeof(S)));
}

}  // namespace TessaryMesh
