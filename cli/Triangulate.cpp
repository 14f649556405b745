#include "MeshFacts.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <meshio/OutputFile.h>
#include <meshio/TriangulateMesh.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

using Korvane::Object;
using MeshIo::MeshFormat;

struct Options {
    std::string input;
    OutputOptions output;
    std::string properties = "all";
};

struct Work {
    MeshIo::MeshRead input;
    MeshIo::TriangulatedMesh result;
    Json seconds;
};

Work work(const Options& options, MeshFormat format, MeshIo::OutputFile& output, Session& session)
{
    Work work;
    Stopwatch watch;
    work.input = readInput(session, options.input);
    const Object& mesh = *work.input.mesh;
    work.seconds["read"] = watch.lap();

    session.beginStage("triangulating");
    work.result = MeshIo::triangulateMesh(mesh, selectProperties(mesh, options.properties));
    session.warn(work.result.warnings);
    work.seconds["triangulate"] = watch.lap();

    session.beginStage("writing " + options.output.path);
    session.warn(MeshIo::writeMesh(*work.result.mesh, format, output));
    session.beginStage("finishing " + options.output.path);
    output.commit();
    work.seconds["write"] = watch.lap();
    return work;
}

std::string change(const Json& facts, const char* what)
{
    const Json& before = facts["before"][what];
    const Json& after = facts["after"][what];
    return std::string(what) + " " + before.dump() + (before == after ? "" : " -> " + after.dump());
}

std::string summary(const Json& facts)
{
    double seconds = 0;
    for (const Json& part : facts["seconds"])
        seconds += part.get<double>();
    char took[32];
    std::snprintf(took, sizeof took, "%.3f s", seconds);
    const std::string carried = joined(facts["properties"]);
    return change(facts, "points") + ", " + change(facts, "corners") + ", " +
           change(facts, "faces") + "; carried " + (carried.empty() ? "nothing" : carried) + "; " +
           took + "; see " + facts["output"].get<std::string>();
}

ExitCode triangulate(const Options& options, Session& session)
{
    if (session.settings.json && options.output.path == "-")
        throw UsageError("the mesh goes to standard output, so --json has no place to go");
    const MeshFormat format = formatFor(options.output);
    session.setSubject(options.input);
    // Made first: what stands in the way of the output is told before the long work.
    MeshIo::OutputFile output(options.output.path, options.output.force);
    const Work done = work(options, format, output, session);

    Json facts = {{"verb", "triangulate"},
                  {"file", options.input},
                  {"output", options.output.path},
                  {"format", formatName(format)},
                  {"before", countsOf(*done.input.mesh)},
                  {"after", countsOf(*done.result.mesh)},
                  {"properties", carriedNames(*done.result.mesh)},
                  {"seconds", done.seconds}};
    session.note(summary(facts));
    session.finish(std::move(facts), "");
    return ExitCode::Done;
}

}  // namespace

Run declareTriangulate(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addInput(verb, options->input);
    addOutput(verb, options->output);
    addProperties(verb, options->properties);
    verb.footer(
        "Every face becomes a fan of triangles around its first corner. Points keep their order;\n"
        "values of points, faces and corners follow, indexed ones stay indexed.\n\n"
        "Example:\n  tessary triangulate roof.obj -o roof_triangles.ply --properties texcoord");
    return [options, &session] { return triangulate(*options, session); };
}

}  // namespace Cli
