#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Where things stand in binary STL, whose numbers are little-endian, and words of the ASCII one.
namespace TessaryMesh::Stl {

inline constexpr std::size_t kHeaderSize = 80;
inline constexpr std::size_t kHeadSize = kHeaderSize + 4;  // and the count of facets
inline constexpr std::size_t kFacetSize = 50;              // normal, three corners, attribute

inline unsigned short getUshort(const char* bytes)
{
    const auto* const b = reinterpret_cast<const unsigned char*>(bytes);
    return static_cast<unsigned short>(b[0] | b[1] << 8);
}

inline std::uint32_t getUint(const char* bytes)
{
    return getUshort(bytes) | std::uint32_t{getUshort(bytes + 2)} << 16;
}

inline float getFloat(const char* bytes)
{
    const std::uint32_t bits = getUint(bytes);
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

inline void putUint(char* to, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

inline void putFloat(char* to, float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    putUint(to, bits);
}

/// Whether the word is the keyword, in upper or lower case.
bool isWord(std::string_view found, std::string_view lowerCaseKeyword);

}  // namespace TessaryMesh::Stl
