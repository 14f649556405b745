#include "base/MessageText.h"

#include <algorithm>
#include <cstdio>

namespace TessaryMesh {
namespace {

constexpr std::size_t kLongestQuote = 40;

bool isContinuation(std::string_view text, std::size_t i)
{
    return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
}

// The length of the character at `i`, 0 where there is none: no overlong forms, no surrogates,
// nothing beyond U+10FFFF.
std::size_t utf8Length(std::string_view text, std::size_t i)
{
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    const unsigned lead = byte(i);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    for (std::size_t k = 1; k < length; ++k)
        if (!isContinuation(text, i + k))
            return 0;
    const unsigned second = byte(i + 1);
    const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return wrong ? 0 : length;
}

}  // namespace

std::string inputName(const std::string& path)
{
    return path == "-" ? "standard input" : path;
}

std::string outputName(const std::string& path)
{
    return path == "-" ? "standard output" : path;
}

bool isUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8Length(text, i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

std::vector<char32_t> charactersOf(std::string_view text)
{
    std::vector<char32_t> characters;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (i + length > text.size() || !isUtf8(text.substr(i, length))) {
            characters.push_back(0xFFFD);
            ++i;
            continue;
        }
        char32_t character = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t k = 1; k < length; ++k)
            character = character << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        characters.push_back(character);
        i += length;
    }
    return characters;
}

std::string quoted(std::string_view text)
{
    std::string out = "\"";
    std::size_t i = 0;
    while (i < text.size() && out.size() <= kLongestQuote) {
        const std::size_t length = utf8Length(text, i);
        const bool shown =
            length > 0 && static_cast<unsigned char>(text[i]) >= 0x20 && text[i] != 0x7F;
        out += shown ? text.substr(i, length) : std::string_view("?");
        i += std::max<std::size_t>(length, 1);
    }
    return out + (i < text.size() ? "...\"" : "\"");
}

std::string measureText(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number);
    return text;
}

}  // namespace TessaryMesh
