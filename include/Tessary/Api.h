#pragma once

#include <Pelon/TypeRep.h>

/// @file
/// What every header of the kernels stands on.

/// Marks what the library exports.
#if defined(_WIN32)
#if defined(tessary_EXPORTS)
#define TESSARY_API __declspec(dllexport)
#else
#define TESSARY_API __declspec(dllimport)
#endif
#else
#define TESSARY_API __attribute__((visibility("default")))
#endif

namespace Tessary {

using Pelon::uint;  ///< 32-bit unsigned, the type of every index

}  // namespace Tessary
