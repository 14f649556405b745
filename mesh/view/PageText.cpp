#include "view/PageText.h"

#include "base/MessageText.h"

#include <cmath>
#include <cstdio>

namespace TessaryMesh {
namespace {

void appendEscaped(std::string& out, char32_t unit)
{
    char text[16];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(unit));
    out += text;
}

bool standsForItself(char32_t c)
{
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\' && c != '<' && c != '>' && c != '&';
}

}  // namespace

std::string jsonText(std::string_view text)
{
    std::string out = "\"";
    for (const char32_t c : charactersOf(text)) {
        if (standsForItself(c)) {
            out += static_cast<char>(c);
        } else if (c < 0x10000) {
            appendEscaped(out, c);
        } else {
            appendEscaped(out, 0xD800 + ((c - 0x10000) >> 10));
            appendEscaped(out, 0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return out + '"';
}

std::string jsonNumber(double number)
{
    if (!std::isfinite(number))
        return "null";
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

std::string jsonList(const std::vector<std::string>& values)
{
    std::string list = "[";
    for (const std::string& value : values)
        list += (list.size() > 1 ? ",\n" : "") + value;
    return list + "]";
}

JsonObject& JsonObject::add(std::string_view name, const std::string& json)
{
    m_text += (m_text.empty() ? "" : ",") + jsonText(name) + ":" + json;
    return *this;
}

JsonObject& JsonObject::add(std::string_view name, std::uint64_t number)
{
    return add(name, std::to_string(number));
}

JsonObject& JsonObject::addText(std::string_view name, std::string_view text)
{
    return add(name, jsonText(text));
}

std::string base64(const std::string& bytes)
{
    constexpr const char* kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    const auto at = [&bytes](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
    };
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const unsigned three = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
        for (const unsigned shift : {18u, 12u, 6u, 0u})
            text += kDigits[three >> shift & 63];
    }
    const std::size_t beyond = (3 - bytes.size() % 3) % 3;
    text.replace(text.size() - beyond, beyond, beyond, '=');
    return text;
}

std::string escapedBytes(const std::string& bytes)
{
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 32);
    for (const char byte : bytes) {
        const bool isChanged = byte == '\0' || byte == '\r' || byte == '<' || byte == '=';
        if (isChanged)
            text += '=';
        text += isChanged ? static_cast<char>(byte ^ 0x40) : byte;
    }
    return text;
}

}  // namespace TessaryMesh
