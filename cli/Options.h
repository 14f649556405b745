#pragma once

#include "Session.h"
#include "Verbs.h"

#include <Korvane/Object.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <memory>
#include <string>
#include <vector>

/// The options that verbs share: how they are declared, and what they mean.
namespace Cli {

using Formats = std::vector<const TessaryMesh::Format*>;

/// The formats that hold what a verb writes: `&TessaryMesh::Format::writesMeshes`, say.
Formats formatsThat(bool TessaryMesh::Format::*holds);

/// "OBJ, PLY": the formats that meshes are read from, with `beforeLast` before the last one.
std::string readableFormats(const std::string& beforeLast);

struct OutputOptions {
    std::string path;
    std::string format;  ///< empty: by the ending of the path
    bool force = false;
    bool noSync = false;
    Formats formats;  ///< those that the verb writes
};

/// What verbs that take files are told.
struct FileOptions {
    std::vector<std::string> inputs;
    unsigned jobs = 0;  ///< inputs to work on at a time; 0: not asked for, which is one
    std::string input;  ///< the one that is worked on
    OutputOptions output;
    std::string maps;  ///< where to write the parent maps; empty for nowhere
};

/// --json, --quiet and --threads, which every verb has.
void addSettings(CLI::App& verb, Settings& settings);

/// Declares a verb that takes a mesh and writes no file; returns what runs it.
Run declareReport(CLI::App& verb, Session& session,
                  ExitCode (*report)(const std::string& path, Session& session));

/// The input, and an output in one of these formats.
void addFiles(CLI::App& verb, FileOptions& files, Formats formats);

/// --maps: where each `element` of the output, "face" or "sample", comes from.
void addMaps(CLI::App& verb, FileOptions& files, const std::string& element);

void addProperties(CLI::App& verb, std::string& selection);

/// The format to write. Throws UsageError where neither --format nor the ending says it.
const TessaryMesh::Format& formatFor(const OutputOptions& output);

/// A file to write, by the options that are no matter of its name.
std::unique_ptr<TessaryMesh::OutputFile> openOutput(const std::string& path,
                                                    const OutputOptions& options);

/// The format of a file of parent maps. Throws UsageError where its ending is none of arrays.
const TessaryMesh::Format& mapsFormatFor(const std::string& path);

/// The properties of `mesh` that "all", "none" or "a,b" selects. Throws UsageError for a name that
/// the mesh lacks.
TessaryMesh::Carry selectProperties(const Korvane::Object& mesh, const std::string& selection);

/// Warns of a mesh without points: every verb that takes it does so in the same words.
void warnOfNothing(const Korvane::Object& mesh, Session& session);

/// Reads and validates the verb's input; warnings of the reader become the session's.
TessaryMesh::MeshRead readInput(Session& session, const std::string& path);

}  // namespace Cli
