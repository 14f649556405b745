#pragma once

#include <Pelon/Api.h>
#include <Pelon/String.h>

/// @file
/// What cancellation says.

namespace KOR {

/// The text of the exception that a cancelled job ends with.
PELON_API extern const Pelon::String exceptionMessage;

}  // namespace KOR
