#pragma once

#include "Session.h"

#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/String.h>
#include <meshio/MeshFile.h>

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// The options that verbs share: how they are declared, and what they mean.
namespace Cli {

struct OutputOptions {
    std::string path;
    std::string format;  ///< empty: by the ending of the path
    bool force = false;
};

/// --json, --quiet and --threads, which every verb has.
void addSettings(CLI::App& verb, Session::Settings& settings);

void addInput(CLI::App& verb, std::string& path);
void addOutput(CLI::App& verb, OutputOptions& output);

/// The same for a verb that writes no mesh but one of these formats.
void addOutput(CLI::App& verb, OutputOptions& output, const std::vector<std::string>& formats);

void addProperties(CLI::App& verb, std::string& selection);

/// The format to write. Throws UsageError where neither an option nor the ending says it.
MeshIo::MeshFormat formatFor(const OutputOptions& output);

/// The word for a format, the one that --format takes.
const char* formatName(MeshIo::MeshFormat format);

/// The properties of `mesh` that "all", "none" or "a,b" selects. Throws UsageError for a name that
/// the mesh lacks.
Pelon::Array<Pelon::String> selectProperties(const Korvane::Object& mesh,
                                             const std::string& selection);

/// Reads and validates the verb's input; warnings of the reader become the session's.
MeshIo::MeshRead readInput(Session& session, const std::string& path);

}  // namespace Cli
