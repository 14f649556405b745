#pragma once

namespace Cli {

/// What build this is, in the words of the library's version banner.
extern const char* const kVersionText;

}  // namespace Cli
