#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <TessaryMesh/Files.h>
#include <TessaryMesh/Page.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(One HTML file that opens in any browser, from disk and without a network: turn the mesh,
colour it by any property, see what validate finds at its place, read every value under the
pointer. Two files are shown side by side.

Example:
  tessary view roof.obj roof_quads.obj -o roof.html)";

struct Options {
    std::vector<std::string> inputs;
    std::string output;
    bool force = false;
    TessaryMesh::PageOptions page;
};

// Faulty meshes are what a page is good for.
TessaryMesh::PageModel modelOf(const std::string& path, Session& session)
{
    session.setSubject(path);
    session.beginStage("reading " + path);
    TessaryMesh::MeshRead input = TessaryMesh::readMeshUnchecked(path, {session.settings.maxInput});
    session.warn(input.warnings);
    warnOfNothing(*input.mesh, session);
    return {path == "-" ? "standard input" : std::filesystem::path(path).filename().string(),
            input.mesh};
}

ExitCode view(const Options& options, Session& session)
{
    if (session.settings.json && options.output == "-")
        throw UsageError("the page itself goes to standard output, so --json has no place to go");
    Stopwatch watch;
    TessaryMesh::OutputFile output(options.output, options.force);
    std::vector<TessaryMesh::PageModel> models;
    for (const std::string& path : options.inputs)
        models.push_back(modelOf(path, session));
    session.beginStage("writing " + options.output);
    TessaryMesh::writePage(models, output, options.page);
    output.commit();
    const double seconds = watch.lap();
    session.setSubject(options.inputs.front());
    session.note("open " + options.output + " in a browser");
    session.finish({{"verb", session.verb()},
                    {"files", options.inputs},
                    {"output", options.output},
                    {"seconds", seconds}},
                   "");
    return ExitCode::Done;
}

}  // namespace

Run declareView(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    verb.add_option(
            "INPUT", options->inputs,
            "One or two files to show (" + readableFormats(" or ") + "); - is standard input")
        ->type_name("")
        ->required()
        ->expected(1, 2);
    verb.add_option("--output,-o", options->output, "Page to write; - is standard output")
        ->type_name("FILE")
        ->required();
    verb.add_flag("--force,-f", options->force, "Replace FILE if it exists");
    verb.add_flag("--quantise", options->page.quantise,
                  "Round real numbers to 16 bits of their range, for a page of half the size");
    verb.footer(kHelp);
    return [options, &session] { return view(*options, session); };
}

}  // namespace Cli
