#include "base/VersionBanner.h"

#include "VersionValues.h"

#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>

#if defined(_WIN32)
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Tessary {
namespace {

bool isRequested()
{
    const char* const value = std::getenv("VORTIKA_DUMP_VERSION_INFO");
    // No digits count as 0: "yes" does not ask for it.
    return value && std::atoi(value) != 0;
}

// The stream itself does not know: its descriptor may have been closed behind its back, before the
// program began.
bool isStandardErrorOpen()
{
#if defined(_WIN32)
    return _fileno(stderr) >= 0;
#else
    return fcntl(STDERR_FILENO, F_GETFD) != -1;
#endif
}

// Runs once per load. On the systems that unload libraries a later load prints again.
[[maybe_unused]] const bool bannerWasPrinted = printVersionBanner();

}  // namespace

std::string versionText()
{
    std::ostringstream text;
    text << "Korvane version ";
    const char* separator = "";
    for (const char* const component : kVersionComponents) {
        text << separator << std::strtol(component, nullptr, 10);
        separator = ".";
    }
    text << " (" << kBuildDate << ", build " << kBuildNumber << ", commit " << std::setw(7)
         << std::string(kCommit).substr(0, 7) << ", branch " << kBranch << ')';
    return text.str();
}

bool printVersionBanner()
{
    const bool isWanted = isRequested();
    if (!isStandardErrorOpen() || !isWanted)
        return false;
    // Composed apart: the stream's own settings are the program's.
    std::ostringstream line;
    line << std::setw(16) << "Tessary"
         << ": " << versionText();
    std::cerr << line.str() << std::endl;
    return true;
}

}  // namespace Tessary
