#pragma once

#include "Options.h"

#include <string>
#include <vector>

namespace Cli {

/// One input, and the names of what is made of it; empty for what is not made.
struct FileTask {
    std::string input, output, maps;
};

/// A task for each input. Where --output or --maps names a folder, which is made, files in it are named
/// after the inputs, with the ending of the format.
///
/// Throws UsageError where several inputs have no folder to go to, two outputs would have one name, or
/// --format is needed; FileError where a folder cannot be made.
std::vector<FileTask> tasksOf(const FileOptions& files);

/// Makes a folder, and those around it, where it is missing. Throws FileError.
void makeFolder(const std::string& folder);

}  // namespace Cli
