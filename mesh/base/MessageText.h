#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Text from elsewhere, and how messages show it.
namespace TessaryMesh {

/// How messages call a file: its path, or "standard input" or "standard output".
std::string inputName(const std::string& path);
std::string outputName(const std::string& path);

/// Whether `text` is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// The characters of UTF-8; a byte that is none becomes U+FFFD, which stands for such.
std::vector<char32_t> charactersOf(std::string_view text);

/// `text` in quotation marks for a message: shortened, and with "?" for bytes that cannot be shown.
std::string quoted(std::string_view text);

/// A number of six digits, as measures are told: "0.245497".
std::string measureText(double number);

}  // namespace TessaryMesh
