#include "MeshFacts.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <meshio/OutputFile.h>
#include <meshio/QuadMesh.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

using MeshIo::MeshFormat;

struct Options {
    std::string input;
    OutputOptions output;
    std::string properties = "all";
    MeshIo::QuadOptions quads;
    std::vector<float> innerWeights;
};

struct Work {
    MeshIo::MeshRead input;
    MeshIo::QuadMesh result;
    Json seconds;
};

// What does not fit the mesh was asked for on the command line.
MeshIo::QuadMesh quadsOf(const MeshIo::MeshRead& input, const Options& options)
{
    try {
        return MeshIo::makeQuadMesh(*input.mesh, options.input,
                                    selectProperties(*input.mesh, options.properties),
                                    options.quads);
    } catch (const std::invalid_argument& error) {
        throw UsageError(options.input + ": " + error.what());
    }
}

Work work(const Options& options, MeshFormat format, MeshIo::OutputFile& output, Session& session)
{
    Work work;
    Stopwatch watch;
    work.input = readInput(session, options.input);
    work.seconds["read"] = watch.lap();

    session.beginStage("making quads");
    work.result = quadsOf(work.input, options);
    session.warn(work.result.warnings);
    work.seconds["quads"] = watch.lap();

    session.beginStage("writing " + options.output.path);
    session.warn(MeshIo::writeMesh(*work.result.mesh, format, output));
    session.beginStage("finishing " + options.output.path);
    output.commit();
    work.seconds["write"] = watch.lap();
    return work;
}

std::string summary(const Json& facts)
{
    double seconds = 0;
    for (const Json& part : facts["seconds"])
        seconds += part.get<double>();
    char took[32];
    std::snprintf(took, sizeof took, "%.3f s", seconds);
    const std::string carried = joined(facts["properties"]);
    const Json& split = facts["split_edges"];
    return facts["before"]["faces"].dump() + " faces -> " + facts["after"]["faces"].dump() +
           " quads, " + facts["before"]["points"].dump() + " -> " +
           facts["after"]["points"].dump() + " points, " + facts["creased_edges"].dump() + " of " +
           facts["edges"].dump() + " edges creased" +
           (split == 0 ? "" : ", " + split.dump() + " split") + "; carried " +
           (carried.empty() ? "nothing" : carried) + "; " + took + "; see " +
           facts["output"].get<std::string>();
}

ExitCode quads(const Options& options, Session& session)
{
    if (session.settings.json && options.output.path == "-")
        throw UsageError("the mesh goes to standard output, so --json has no place to go");
    const MeshFormat format = formatFor(options.output);
    session.setSubject(options.input);
    // Made first: what stands in the way of the output is told before the long work.
    MeshIo::OutputFile output(options.output.path, options.output.force);
    const Work done = work(options, format, output, session);

    Json facts = {{"verb", "quads"},
                  {"file", options.input},
                  {"output", options.output.path},
                  {"format", formatName(format)},
                  {"before", countsOf(*done.input.mesh)},
                  {"after", countsOf(*done.result.mesh)},
                  {"edges", done.result.edges},
                  {"creased_edges", done.result.creasedEdges},
                  {"split_edges", done.result.splitEdges},
                  {"properties", carriedNames(*done.result.mesh)},
                  {"seconds", done.seconds}};
    session.note(summary(facts));
    session.finish(std::move(facts), "");
    return ExitCode::Done;
}

// Any three weights that are not negative will do; what counts is their ratio.
void setInnerWeights(Options& options)
{
    if (options.innerWeights.empty())
        return;
    double sum = 0;
    for (const float weight : options.innerWeights) {
        if (!(weight >= 0 && std::isfinite(weight)))
            throw UsageError("--inner-weights takes three finite numbers that are not negative");
        sum += weight;
    }
    if (sum == 0)
        throw UsageError("--inner-weights takes three numbers that are not all 0");
    for (int k = 0; k < 3; ++k)
        options.quads.innerWeights[k] = static_cast<float>(options.innerWeights[k] / sum);
}

void addCreases(CLI::App& verb, Options& options)
{
    CLI::Option* const angle =
        verb.add_option_function<double>(
                "--crease-angle",
                [&options](double degrees) { options.quads.creaseAngle = degrees; },
                "Crease the edges at which faces meet at more than this, 0 to 180")
            ->type_name("DEGREES");
    verb.add_option("--crease-property", options.quads.creaseProperty,
                    "Crease by a bool, uchar or float for each corner: the edge that starts there")
        ->type_name("NAME")
        ->excludes(angle);
    verb.add_option("--gap", options.quads.gap,
                    "Open creased edges: this share of the edge, 0 to 1, lies between its points")
        ->type_name("SHARE");
}

void addCuts(CLI::App& verb, Options& options)
{
    verb.add_option("--edge-weight", options.quads.edgeWeight,
                    "Cut edges here: the share of their lower-numbered point, 0 to 1; 0.5 without")
        ->type_name("T");
    verb.add_option("--inner-weights", options.innerWeights,
                    "Cut triangles here: the ratio of their corners' shares; 1,1,1 without")
        ->type_name("A,B,C")
        ->delimiter(',')
        ->expected(3);
    verb.add_flag("--split-edges", options.quads.splitEdges,
                  "Cut edges along which faces run in one direction once for each face");
}

}  // namespace

Run declareQuads(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addInput(verb, options->input);
    addOutput(verb, options->output);
    addProperties(verb, options->properties);
    addCreases(verb, *options);
    addCuts(verb, *options);
    verb.footer(
        "Every face becomes a fan of triangles, every triangle three quads around an inner point.\n"
        "Values follow: real ones are blended, others picked, indexed ones stay indexed. A "
        "creased\n"
        "edge gets two points, one for each end.\n\n"
        "Example:\n  tessary quads roof.obj -o roof_quads.obj --crease-angle 30");
    return [options, &session] {
        setInnerWeights(*options);
        return quads(*options, session);
    };
}

}  // namespace Cli
