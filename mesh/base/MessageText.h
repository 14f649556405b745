#pragma once

#include <string>
#include <string_view>

/// Text from elsewhere, and how messages show it.
namespace TessaryMesh {

/// How messages call a file: its path, or "standard input" or "standard output".
std::string inputName(const std::string& path);
std::string outputName(const std::string& path);

/// Whether `text` is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// `text` in quotation marks for a message: shortened, and with "?" for bytes that cannot be shown.
std::string quoted(std::string_view text);

}  // namespace TessaryMesh
