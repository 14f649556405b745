#include "MeshFacts.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <meshio/OutputFile.h>
#include <meshio/TriangleTables.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

struct Options {
    std::string input;
    OutputOptions output;
};

const std::vector<std::string>& formats()
{
    static const std::vector<std::string> kFormats = {"json", "npz"};
    return kFormats;
}

std::string formatOf(const OutputOptions& output)
{
    if (!output.format.empty())
        return output.format;
    if (output.path == "-")
        throw UsageError("standard output has no ending that says its format; give --format");
    for (const std::string& format : formats())
        if (CLI::detail::to_lower(output.path).rfind("." + format) + format.size() + 1 ==
            output.path.size())
            return format;
    throw UsageError(output.path + ": the ending is neither .json nor .npz; give --format");
}

std::string summary(const Json& facts)
{
    double seconds = 0;
    for (const Json& part : facts["seconds"])
        seconds += part.get<double>();
    char took[32];
    std::snprintf(took, sizeof took, "%.3f s", seconds);
    return facts["triangles"].dump() + " triangles, " + facts["edges"].dump() + " edges, " +
           facts["boundary_edges"].dump() + " of them boundaries; " + took + "; see " +
           facts["output"].get<std::string>();
}

std::size_t boundaryCount(const Pelon::Array<Pelon::uint>& triEdges)
{
    std::size_t count = 0;
    for (std::size_t e = 1; e < triEdges.size(); e += 2)
        count += triEdges[e] == 0xFFFFFFFF ? 1 : 0;
    return count;
}

ExitCode adjacency(const Options& options, Session& session)
{
    if (session.settings.json && options.output.path == "-")
        throw UsageError("the tables go to standard output, so --json has no place to go");
    const std::string format = formatOf(options.output);
    session.setSubject(options.input);
    // Made first: what stands in the way of the output is told before the long work.
    MeshIo::OutputFile output(options.output.path, options.output.force);
    Json seconds;
    Stopwatch watch;
    const MeshIo::MeshRead input = readInput(session, options.input);
    seconds["read"] = watch.lap();
    session.beginStage("finding neighbours");
    const MeshIo::TriangleTables tables = MeshIo::makeTriangleTables(*input.mesh, options.input);
    seconds["adjacency"] = watch.lap();
    session.beginStage("writing " + options.output.path);
    format == "npz" ? writeNpz(tables, output) : writeJson(tables, output);
    session.beginStage("finishing " + options.output.path);
    output.commit();
    seconds["write"] = watch.lap();

    Json facts = {{"verb", "adjacency"},
                  {"file", options.input},
                  {"output", options.output.path},
                  {"format", format},
                  {"before", countsOf(*input.mesh)},
                  {"triangles", tables.faceVertex.size() / 3},
                  {"edges", tables.triEdges.size() / 2},
                  {"boundary_edges", boundaryCount(tables.triEdges)},
                  {"seconds", seconds}};
    session.note(summary(facts));
    session.finish(std::move(facts), "");
    return ExitCode::Done;
}

}  // namespace

Run declareAdjacency(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addInput(verb, options->input);
    addOutput(verb, options->output, formats());
    verb.footer(
        "Every face becomes a fan of triangles. Corner k of triangle t is 3t + k; its edge runs "
        "to\n"
        "the next corner. The arrays are face_vertex (the points of each triangle), tri_edges "
        "(the\n"
        "two corners of each edge), face_vertex_adjacent_tri (the triangle across the edge of "
        "each\n"
        "corner), dual_face_offset and dual_face_vertex (the corners of each point). None is\n"
        "4294967295 in .npz and null in .json.\n\n"
        "Example:\n  tessary adjacency roof.obj -o roof.npz");
    return [options, &session] { return adjacency(*options, session); };
}

}  // namespace Cli
