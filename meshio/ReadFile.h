#pragma once

#include <Pelon/Array.h>

#include <string>
#include <string_view>

namespace MeshIo {

/// All bytes of a file, "-" meaning standard input. Throws FileError where there is no such file, a
/// folder, nothing in it, or no permission; std::runtime_error when the caller's job is cancelled.
Pelon::Array<char> readFile(const std::string& path);

inline std::string_view viewOf(const Pelon::Array<char>& bytes)
{
    return {bytes.data(), bytes.size()};
}

/// How messages call a file: its path, or "standard input".
std::string inputName(const std::string& path);

/// Ends long work with the exception that a cancelled job ends with.
void throwIfCancelled();

/// Whether `text` is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// `text` in quotation marks for a message: shortened, and with "?" for bytes that cannot be shown.
std::string quoted(std::string_view text);

}  // namespace MeshIo
