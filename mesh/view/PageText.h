#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What a page's text is made of. Everything here is ASCII and without a "<", so that nothing in it can
/// end the element that it stands in, and no encoding of the page changes it.
namespace TessaryMesh {

/// A string of JSON.
std::string jsonText(std::string_view text);

/// A number of JSON; null for one that is not finite.
std::string jsonNumber(double number);

/// "[a,b]" of values that are JSON already.
std::string jsonList(const std::vector<std::string>& values);

/// An object of JSON, member by member.
class JsonObject {
public:
    JsonObject& add(std::string_view name, const std::string& json);
    JsonObject& addText(std::string_view name, std::string_view text);
    JsonObject& add(std::string_view name, std::uint64_t number);

    std::string text() const { return "{" + m_text + "}"; }

private:
    std::string m_text;
};

std::string base64(const std::string& bytes);

/// The bytes as the windows-1252 text of an element: those that HTML would change, and "<", are "=" and
/// the byte with its seventh bit turned over.
std::string escapedBytes(const std::string& bytes);

}  // namespace TessaryMesh
