#include "Conversion.h"
#include "EachFile.h"
#include "MeshFacts.h"
#include "Verbs.h"
#include "Words.h"

#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

struct Options : FileOptions {
    TessaryMesh::TableOptions tables;
    bool noEdges = false;
};

constexpr const char* kHelp =
    R"(Every face becomes a fan of triangles. Corner k of triangle t is 3t + k; its edge runs to
the next corner. The arrays are face_vertex (the points of each triangle), tri_edges (the
two corners of each edge), face_vertex_adjacent_tri (the triangle across the edge of each
corner), dual_face_offset and dual_face_vertex (the corners of each point). None is
4294967295 in .npz and null in .json.

Example:
  tessary adjacency roof.obj -o roof.npz)";

Json factsOf(const TessaryMesh::TriangleTables& tables)
{
    Json facts = {{"triangles", tables.faceVertex->size() / 3},
                  {"edges", nullptr},
                  {"boundary_edges", nullptr},
                  {"split_edges", nullptr}};
    if (!tables.triEdges)
        return facts;
    const Pelon::Array<Pelon::uint>& edges = *tables.triEdges;
    std::size_t boundaries = 0;
    for (std::size_t e = 1; e < edges.size(); e += 2)
        boundaries += edges[e] == 0xFFFFFFFF ? 1 : 0;
    facts["edges"] = edges.size() / 2;
    facts["boundary_edges"] = boundaries;
    facts["split_edges"] = tables.splitEdges;
    return facts;
}

std::string summary(const Json& facts)
{
    const auto some = [&facts](const char* key, const char* what) {
        return counted(facts[key].get<std::uint64_t>(), what);
    };
    const std::string triangles = some("triangles", "triangle");
    if (facts["edges"].is_null())
        return triangles + " and their neighbours";
    const Json& split = facts["split_edges"];
    return triangles + ", " + some("edges", "edge") + ", " + facts["boundary_edges"].dump() +
           " of them boundary" + (split == 0 ? "" : ", " + split.dump() + " split");
}

ExitCode adjacency(const Options& options, Session& session)
{
    Conversion conversion(options, session);
    const TessaryMesh::TriangleTables tables = conversion.run(
        "adjacency", "finding neighbours",
        [&] { return TessaryMesh::makeTriangleTables(conversion.mesh(), options.tables); });
    conversion.write([&](TessaryMesh::OutputFile& output) -> std::vector<std::string> {
        TessaryMesh::writeArrays(tables.arrays(), conversion.format(), output);
        return {};
    });
    Json facts = {{"before", countsOf(conversion.mesh())}};
    facts.update(factsOf(tables));
    return conversion.report(facts, summary(facts));
}

void leaveOutEdges(Options& options)
{
    options.tables.withEdges = !options.noEdges;
}

}  // namespace

Run declareAdjacency(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, formatsThat(&TessaryMesh::Format::writesArrays));
    CLI::Option* const split =
        verb.add_flag("--split-edges", options->tables.splitEdges,
                      "List edges along which faces run in one direction once for each face, as "
                      "boundaries");
    verb.add_flag("--no-edges", options->noEdges,
                  "Make no tri_edges; neighbours need none, so any mesh will do")
        ->excludes(split);
    verb.footer(kHelp);
    return eachFile(options, session, adjacency, leaveOutEdges);
}

}  // namespace Cli
