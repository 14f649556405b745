#include "Options.h"

#include "EachFile.h"
#include "Help.h"
#include "NameList.h"
#include "Numbers.h"
#include "Words.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <memory>

namespace Cli {
namespace {

using TessaryMesh::Format;

constexpr unsigned kMostThreads = 1024;

std::string upperCase(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

std::vector<std::string> namesOf(const Formats& formats)
{
    std::vector<std::string> names;
    for (const Format* const format : formats)
        names.emplace_back(format->name);
    return names;
}

// Variants have none.
std::vector<std::string> endingsOf(const Formats& formats)
{
    std::vector<std::string> endings;
    for (const Format* const format : formats)
        if (!format->ending.empty())
            endings.emplace_back(format->ending);
    return endings;
}

std::string namesOf(const Pelon::Array<Pelon::String>& names)
{
    std::string list;
    for (const Pelon::String& name : names)
        list += (list.empty() ? "" : ", ") + asTyped(std::string(name.view()));
    return list.empty() ? "none" : list;
}

void addInputs(CLI::App& verb, FileOptions& files)
{
    verb.add_option("INPUT", files.inputs,
                    "Mesh files to read (" + readableFormats(" or ") + "); - is standard input")
        ->type_name("")
        ->required();
    verb.add_option("--jobs,-j", files.jobs,
                    "Work on this many files at a time, which share the threads, 1 to 1024; one "
                    "without this option")
        ->type_name("N")
        ->check(wholeNumber(1, kMostThreads));
}

}  // namespace

Formats formatsThat(bool Format::*holds)
{
    Formats found;
    for (const Format* const format : TessaryMesh::formats())
        if (format->*holds)
            found.push_back(format);
    return found;
}

std::string readableFormats(const std::string& beforeLast)
{
    std::vector<std::string> words;
    for (const std::string& ending : endingsOf(formatsThat(&Format::readsMeshes)))
        words.push_back(upperCase(ending.substr(1)));
    return listOf(words, beforeLast);
}

void addSettings(CLI::App& verb, Settings& settings)
{
    verb.add_flag("--json", settings.json, "Report as one JSON document on standard output")
        ->group(kSettingsGroup);
    verb.add_flag("--quiet,-q", settings.quiet, "Say nothing on standard error but errors")
        ->group(kSettingsGroup);
    verb.add_option("--threads", settings.threads, "Use this many threads, 1 to 1024")
        ->type_name("N")
        ->check(wholeNumber(1, kMostThreads))
        ->group(kSettingsGroup);
    if (verb.get_option_no_throw("INPUT"))
        verb.add_option("--max-input", settings.maxInput,
                        "Read no more than this, such as 500M or 2G; without it\n"
                        "a quarter of the memory from pipes and devices")
            ->type_name("SIZE")
            ->transform(CLI::AsSizeValue(false).description(""))
            ->group(kSettingsGroup);
}

Run declareReport(CLI::App& verb, Session& session,
                  ExitCode (*report)(const std::string& path, Session& session))
{
    const auto files = std::make_shared<FileOptions>();
    addInputs(verb, *files);
    return [files, &session, report] {
        return forEachFile(*files, session, [report](const FileTask& task, Session& one) {
            return report(task.input, one);
        });
    };
}

void addFiles(CLI::App& verb, FileOptions& files, Formats formats)
{
    addInputs(verb, files);
    OutputOptions& output = files.output;
    output.formats = std::move(formats);
    const std::vector<std::string> names = namesOf(output.formats);
    verb.add_option(
            "--output,-o", output.path,
            "File to write, - for standard output; or folder to write to under the names of the "
            "inputs, made where it is missing and the name ends in /")
        ->type_name("FILE")
        ->required();
    verb.add_option("--format", output.format,
                    listOf(names, " or ") + "; without it the ending of FILE decides")
        ->type_name("FORMAT")
        ->check(oneOf(names));
    verb.add_flag("--force,-f", output.force, "Replace FILE if it exists");
    verb.add_flag("--no-sync", output.noSync,
                  "Do not wait for the disk: sooner done, but a power cut may take FILE");
}

void addMaps(CLI::App& verb, FileOptions& files, const std::string& element)
{
    verb.add_option("--maps", files.maps,
                    "Write where each " + element +
                        " comes from: its face in INPUT and the like, as arrays "
                        "(.npz or .json, or a folder for .npz)")
        ->type_name("FILE");
}

void addProperties(CLI::App& verb, std::string& selection)
{
    verb.add_option(
            "--properties", selection,
            "What to carry: all (without this option), none, or names such as a,b; a name with "
            "a comma stands in quotation marks")
        ->type_name("NAMES");
}

const Format& formatFor(const OutputOptions& output)
{
    if (!output.format.empty())
        return *TessaryMesh::findFormat(output.format);
    if (output.path == "-")
        throw UsageError("standard output has no ending that says its format; give --format");
    const Format* const format = TessaryMesh::formatOfName(output.path);
    if (std::find(output.formats.begin(), output.formats.end(), format) != output.formats.end())
        return *format;
    throw UsageError(output.path + ": the ending is neither " +
                     listOf(endingsOf(output.formats), " nor ") + "; give --format");
}

std::unique_ptr<TessaryMesh::OutputFile> openOutput(const std::string& path,
                                                    const OutputOptions& options)
{
    auto output = std::make_unique<TessaryMesh::OutputFile>(path, options.force);
    if (options.noSync)
        output->skipSync();
    return output;
}

const Format& mapsFormatFor(const std::string& path)
{
    const Format* const format = TessaryMesh::formatOfName(path);
    if (format && format->writesArrays)
        return *format;
    throw UsageError(path + ": --maps writes arrays; name a file that ends in " +
                     listOf(endingsOf(formatsThat(&Format::writesArrays)), " or "));
}

TessaryMesh::Carry selectProperties(const Korvane::Object& mesh, const std::string& selection)
{
    if (selection.empty() || selection == "all")
        return TessaryMesh::Carry::all();
    if (selection == "none")
        return TessaryMesh::Carry::none();
    const Pelon::Array<Pelon::String> present = TessaryMesh::carriedPropertyNames(mesh);
    Pelon::Array<Pelon::String> selected;
    for (const std::string& name : namesIn(selection)) {
        if (std::find(present.begin(), present.end(), Pelon::String(name)) == present.end())
            throw UsageError("the mesh has no property " + asTyped(name) +
                             "; it has: " + namesOf(present));
        selected.push_back(name);
    }
    return TessaryMesh::Carry(std::move(selected));
}

void warnOfNothing(const Korvane::Object& mesh, Session& session)
{
    using namespace Korvane::Geometry;
    if (getElementCount(mesh, sPointComp) == 0)
        session.warn("there are no points, so there is no mesh");
}

TessaryMesh::MeshRead readInput(Session& session, const std::string& path)
{
    session.setSubject(path);
    session.beginStage("reading");
    TessaryMesh::MeshRead input = TessaryMesh::readMesh(path, {session.settings.maxInput});
    session.warn(input.warnings);
    warnOfNothing(*input.mesh, session);
    return input;
}

}  // namespace Cli
