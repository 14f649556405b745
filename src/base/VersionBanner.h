#pragma once

#include <string>

namespace Tessary {

/// "Korvane version 2.11.0.0 (DATE, build NUMBER, commit 1234567, branch NAME)".
std::string versionText();

/// Writes the library's name and the version text to standard error as one line, where the
/// environment variable VORTIKA_DUMP_VERSION_INFO holds a number other than 0 and standard error is
/// open. Returns whether it did.
bool printVersionBanner();

}  // namespace Tessary
