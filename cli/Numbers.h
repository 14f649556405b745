#pragma once

#include <Korvane/Object.h>

#include <cstdint>
#include <string>

namespace CLI {
class Validator;
}

/// Numbers on the command line. Whatever is wrong with one, the message says what is allowed.
namespace Cli {

CLI::Validator wholeNumber(std::uint64_t least, std::uint64_t most);

/// A real number, or percent of one: as a transformation it makes 0.05 of "5%".
CLI::Validator share(double least, double most);

CLI::Validator realNumber(double least, double most);

/// A length above zero: a number in the units of the mesh, or percent.
CLI::Validator length();

/// The length that `text`, which length() has let pass, is for this mesh: percent are of the radius
/// of the smallest sphere around its points. Throws UsageError, which begins with `option`, where that is 0.
double lengthIn(const Korvane::Object& mesh, const std::string& text, const std::string& option);

}  // namespace Cli
