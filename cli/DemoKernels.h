#pragma once

#include "Steps.h"

#include <Korvane/Object.h>

#include <cstddef>

namespace Cli {

/// Runs the kernels that work on plain arrays on a closed mesh without errors, and holds what they
/// say against each other. Returns how often they disagree.
std::size_t runKernels(const Korvane::Object& mesh, Steps& steps);

}  // namespace Cli
