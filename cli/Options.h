#pragma once

#include "Session.h"
#include "Verbs.h"

#include <Korvane/Object.h>
#include <TessaryMesh/Operations.h>
#include <mesh/files/MeshFile.h>

#include <optional>
#include <string>
#include <vector>

/// The options that verbs share: how they are declared, and what they mean.
namespace Cli {

struct OutputOptions {
    std::string path;
    std::string format;  ///< empty: by the ending of the path
    bool force = false;
    std::vector<std::string> formats;  ///< those that the verb writes
};

/// What every verb that writes a file is told.
struct FileOptions {
    std::string input;
    OutputOptions output;
};

/// --json, --quiet and --threads, which every verb has.
void addSettings(CLI::App& verb, Session::Settings& settings);

/// Declares a verb that takes a mesh and writes no file; returns what runs it.
Run declareReport(CLI::App& verb, Session& session,
                  ExitCode (*report)(const std::string& path, Session& session));

/// The input, and an output in one of these formats.
void addFiles(CLI::App& verb, FileOptions& files, std::vector<std::string> formats);

std::vector<std::string> meshFormats();

/// The formats of meshes and one more.
std::vector<std::string> meshFormatsAnd(const std::string& format);

void addProperties(CLI::App& verb, std::string& selection);

/// The format to write, in the word that --format takes. Throws UsageError where neither that option
/// nor the ending says it.
std::string formatFor(const OutputOptions& output);

/// The word for a mesh format, and back: none for what holds no mesh.
const char* formatName(TessaryMesh::MeshFormat format);
std::optional<TessaryMesh::MeshFormat> meshFormatOf(const std::string& name);

/// The properties of `mesh` that "all", "none" or "a,b" selects. Throws UsageError for a name that
/// the mesh lacks.
TessaryMesh::Carry selectProperties(const Korvane::Object& mesh, const std::string& selection);

/// Reads and validates the verb's input; warnings of the reader become the session's.
TessaryMesh::MeshRead readInput(Session& session, const std::string& path);

}  // namespace Cli
