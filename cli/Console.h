#pragma once

#include <string_view>

namespace Cli {

/// Gives descriptors 0, 1 and 2 that arrive closed a file that refuses input and output, so that no
/// mesh file that is opened later can be mistaken for a standard stream. Also turns the signals for a
/// pipe without a reader and for a file beyond the user's limit into errors of the write.
void secureStandardStreams();

/// Writes all bytes to a descriptor; false, with errno set, where the system refuses.
bool writeAll(int descriptor, std::string_view bytes);

}  // namespace Cli
