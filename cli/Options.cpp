#include "Options.h"

#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>

namespace Cli {
namespace {

using TessaryMesh::MeshFormat;

constexpr unsigned kMostThreads = 1024;

struct NamedFormat {
    const char* name;
    MeshFormat format;
};
constexpr NamedFormat kFormats[] = {{"obj", MeshFormat::Obj},
                                    {"ply", MeshFormat::PlyBinary},
                                    {"ply-ascii", MeshFormat::PlyAscii},
                                    {"ply-big", MeshFormat::PlyBinaryBigEndian}};

// "ply-ascii" and the like are variants that no ending tells.
bool hasEnding(const std::string& format)
{
    return format.find('-') == std::string::npos;
}

bool endsWith(const std::string& path, const std::string& ending)
{
    return path.size() > ending.size() &&
           CLI::detail::to_lower(path.substr(path.size() - ending.size())) == ending;
}

// ".obj, .ply nor .npz"
std::string endingsOf(const std::vector<std::string>& formats)
{
    std::vector<std::string> endings;
    std::copy_if(formats.begin(), formats.end(), std::back_inserter(endings), hasEnding);
    std::string list;
    for (const std::string& ending : endings)
        list += (list.empty() ? "." : &ending == &endings.back() ? " nor ." : ", .") + ending;
    return list;
}

std::string namesOf(const Pelon::Array<Pelon::String>& names)
{
    std::string list;
    for (const Pelon::String& name : names)
        list += (list.empty() ? "" : ", ") + std::string(name.view());
    return list.empty() ? "none" : list;
}

void addInput(CLI::App& verb, std::string& path)
{
    verb.add_option("INPUT", path, "Mesh file to read (OBJ or PLY); - is standard input")
        ->type_name("")
        ->required();
}

}  // namespace

void addSettings(CLI::App& verb, Session::Settings& settings)
{
    verb.add_flag("--json", settings.json, "Report as one JSON document on standard output");
    verb.add_flag("--quiet,-q", settings.quiet, "Say nothing on standard error but errors");
    verb.add_option("--threads", settings.threads, "Use this many threads, 1 to 1024")
        ->type_name("N")
        ->check(CLI::Range(1u, kMostThreads).description(""));
}

Run declareReport(CLI::App& verb, Session& session,
                  ExitCode (*report)(const std::string& path, Session& session))
{
    const auto path = std::make_shared<std::string>();
    addInput(verb, *path);
    return [path, &session, report] { return report(*path, session); };
}

void addFiles(CLI::App& verb, FileOptions& files, std::vector<std::string> formats)
{
    addInput(verb, files.input);
    OutputOptions& output = files.output;
    output.formats = std::move(formats);
    std::string list;
    for (const std::string& format : output.formats)
        list += (list.empty() ? "" : format == output.formats.back() ? " or " : ", ") + format;
    verb.add_option("--output,-o", output.path, "File to write; - is standard output")
        ->type_name("FILE")
        ->required();
    verb.add_option("--format", output.format, list + "; without it the ending of FILE decides")
        ->type_name("FORMAT")
        ->check(CLI::IsMember(output.formats).description(""));
    verb.add_flag("--force,-f", output.force, "Replace FILE if it exists");
}

std::vector<std::string> meshFormats()
{
    std::vector<std::string> names;
    for (const NamedFormat& format : kFormats)
        names.push_back(format.name);
    return names;
}

std::vector<std::string> meshFormatsAnd(const std::string& format)
{
    std::vector<std::string> formats = meshFormats();
    formats.push_back(format);
    return formats;
}

void addProperties(CLI::App& verb, std::string& selection)
{
    verb.add_option("--properties", selection,
                    "What to carry: all (without this option), none, or names such as a,b")
        ->type_name("NAMES");
}

std::string formatFor(const OutputOptions& output)
{
    if (!output.format.empty())
        return output.format;
    if (output.path == "-")
        throw UsageError("standard output has no ending that says its format; give --format");
    for (const std::string& format : output.formats)
        if (hasEnding(format) && endsWith(output.path, "." + format))
            return format;
    throw UsageError(output.path + ": the ending is neither " + endingsOf(output.formats) +
                     "; give --format");
}

const char* formatName(MeshFormat format)
{
    return std::find_if(std::begin(kFormats), std::end(kFormats),
                        [format](const NamedFormat& named) { return named.format == format; })
        ->name;
}

std::optional<MeshFormat> meshFormatOf(const std::string& name)
{
    for (const NamedFormat& format : kFormats)
        if (name == format.name)
            return format.format;
    return std::nullopt;
}

TessaryMesh::Carry selectProperties(const Korvane::Object& mesh, const std::string& selection)
{
    if (selection.empty() || selection == "all")
        return TessaryMesh::Carry::all();
    if (selection == "none")
        return TessaryMesh::Carry::none();
    const Pelon::Array<Pelon::String> present = TessaryMesh::carriedPropertyNames(mesh);
    Pelon::Array<Pelon::String> selected;
    std::istringstream list(selection);
    for (std::string name; std::getline(list, name, ',');) {
        if (std::find(present.begin(), present.end(), Pelon::String(name)) == present.end())
            throw UsageError("the mesh has no property \"" + name +
                             "\"; it has: " + namesOf(present));
        selected.push_back(name);
    }
    return TessaryMesh::Carry(std::move(selected));
}

TessaryMesh::MeshRead readInput(Session& session, const std::string& path)
{
    session.setSubject(path);
    session.beginStage("reading");
    TessaryMesh::MeshRead input = TessaryMesh::readMesh(path);
    session.warn(input.warnings);
    return input;
}

}  // namespace Cli
