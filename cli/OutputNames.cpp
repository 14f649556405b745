#include "OutputNames.h"

#include "Words.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <system_error>

namespace Cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kZipped = ".gz";

bool isFolder(const std::string& path)
{
    std::error_code unknown;
    return !path.empty() && (path.back() == '/' || fs::is_directory(path, unknown));
}

// "roof" of "roof.obj", "roof.obj.gz" and "roof.xyz", "roof.0017" of "roof.0017.obj" and of itself: the
// number of a frame is no ending.
std::string stemOf(fs::path name)
{
    if (name.extension() == kZipped)
        name = name.stem();
    const std::string ending = name.extension().string();
    const bool isNumber = std::all_of(ending.begin(), ending.end(), [](char c) {
        return c == '.' || std::isdigit(static_cast<unsigned char>(c));
    });
    return (isNumber ? name : name.stem()).string();
}

// Variants, such as "ply-ascii", have the ending of what stands before the hyphen.
std::string endingOf(const std::string& format)
{
    const std::string_view whole = TessaryMesh::findFormat(format)->ending;
    return std::string(!whole.empty()
                           ? whole
                           : TessaryMesh::findFormat(format.substr(0, format.find('-')))->ending);
}

std::string nameIn(const std::string& folder, const std::string& input, const std::string& ending)
{
    const fs::path name = fs::path(input).filename();
    return (fs::path(folder) / (ending.empty() ? name : fs::path(stemOf(name) + ending))).string();
}

std::string outputFor(const std::string& input, const OutputOptions& output)
{
    OutputOptions its = output;
    its.path = nameIn(output.path, input, output.format.empty() ? "" : endingOf(output.format));
    formatFor(its);
    return its.path;
}

std::string clash(const FileTask& one, const FileTask& another, const std::string& name)
{
    if (&one == &another)
        return "the output and the maps of " + one.input + " would both be written to " + name +
               " (give --maps a folder of its own)";
    if (one.input == another.input)
        return one.input + " is given twice";
    return one.input + " and " + another.input + " would both be written to " + name +
           " (give them folders of their own)";
}

void rejectSameNames(const std::vector<FileTask>& tasks)
{
    std::map<std::string, const FileTask*> owners;
    for (const FileTask& task : tasks)
        for (const std::string& name : {task.output, task.maps}) {
            const auto [found, isNew] = owners.emplace(name, &task);
            if (!name.empty() && !isNew)
                throw UsageError(clash(*found->second, task, name));
        }
}

void rejectNameless(const FileOptions& files, bool hasFolder)
{
    const auto& inputs = files.inputs;
    const bool hasOutput = !files.output.path.empty();
    if (inputs.size() > 1 && hasOutput && !hasFolder)
        throw UsageError(counted(inputs.size(), "input") + " need a folder to be written to, and " +
                         files.output.path + " is none (end its name in / to have it made)");
    if (hasFolder && std::find(inputs.begin(), inputs.end(), "-") != inputs.end())
        throw UsageError("standard input has no name to keep; give --output the name of a file");
    if (inputs.size() > 1 && !files.maps.empty() && !isFolder(files.maps))
        throw UsageError(counted(inputs.size(), "input") + " need a folder for their maps, and " +
                         files.maps + " is none (end its name in / to have it made)");
}

}  // namespace

std::vector<FileTask> tasksOf(const FileOptions& files)
{
    const bool hasFolder = isFolder(files.output.path), hasMapsFolder = isFolder(files.maps);
    rejectNameless(files, hasFolder);
    std::vector<FileTask> tasks;
    for (const std::string& input : files.inputs)
        tasks.push_back({input, hasFolder ? outputFor(input, files.output) : files.output.path,
                         hasMapsFolder ? nameIn(files.maps, input, ".npz") : files.maps});
    if (hasFolder || hasMapsFolder)
        rejectSameNames(tasks);
    if (hasFolder)
        makeFolder(files.output.path);
    if (hasMapsFolder)
        makeFolder(files.maps);
    return tasks;
}

void makeFolder(const std::string& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    using TessaryMesh::FileError;
    if (error)
        throw FileError(FileError::Code::Unwritable, folder,
                        folder + ": cannot make this folder: " + error.message() +
                            " (choose another with --output)");
}

}  // namespace Cli
