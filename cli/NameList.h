#pragma once

#include <string>
#include <vector>

/// Lists of names on the command line: `a, b` or `"Ambient, Occlusion", b`.
namespace Cli {

/// The names between commas. Blanks around a name do not count; one in quotation marks is taken as it is,
/// with "" for a quotation mark. Throws UsageError where a quotation mark has no end.
std::vector<std::string> namesIn(const std::string& list);

/// The name as namesIn() takes it.
std::string asTyped(const std::string& name);

}  // namespace Cli
