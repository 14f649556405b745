#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TessaryMesh {

/// `text` with "%" and two hexadecimal digits, capital letters, in the place of each byte that
/// isCoded(byte) names and of "%".
template <class IsCoded>
std::string percentCoded(std::string_view text, const IsCoded& isCoded)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string coded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c != '%' && !isCoded(byte)) {
            coded += c;
            continue;
        }
        coded += '%';
        coded += kDigits[byte >> 4];
        coded += kDigits[byte & 15];
    }
    return coded;
}

/// The text again; what is no such code stays as it is.
std::string percentDecoded(std::string_view coded);

}  // namespace TessaryMesh
