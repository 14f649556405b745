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

constexpr const char* kHelp =
    R"(Every face becomes a fan of triangles. Corner k of triangle t is 3t + k; its edge runs to
the next corner. The arrays are face_vertex (the points of each triangle), tri_edges (the
two corners of each edge), face_vertex_adjacent_tri (the triangle across the edge of each
corner), dual_face_offset and dual_face_vertex (the corners of each point). None is
4294967295 in .npz and null in .json.

Example:
  tessary adjacency roof.obj -o roof.npz)";

std::size_t boundaryCount(const Pelon::Array<Pelon::uint>& triEdges)
{
    std::size_t count = 0;
    for (std::size_t e = 1; e < triEdges.size(); e += 2)
        count += triEdges[e] == 0xFFFFFFFF ? 1 : 0;
    return count;
}

std::string summary(const Json& facts)
{
    const auto some = [&facts](const char* key, const char* what) {
        return counted(facts[key].get<std::uint64_t>(), what);
    };
    return some("triangles", "triangle") + ", " + some("edges", "edge") + ", " +
           facts["boundary_edges"].dump() + " of them boundary";
}

ExitCode adjacency(const FileOptions& options, Session& session)
{
    Conversion conversion(options, session);
    const TessaryMesh::TriangleTables tables =
        conversion.run("adjacency", "finding neighbours",
                       [&] { return TessaryMesh::makeTriangleTables(conversion.mesh()); });
    conversion.write([&](TessaryMesh::OutputFile& output) -> std::vector<std::string> {
        TessaryMesh::writeArrays(tables.arrays(), conversion.format(), output);
        return {};
    });
    const Json facts = {{"before", countsOf(conversion.mesh())},
                        {"triangles", tables.faceVertex->size() / 3},
                        {"edges", tables.triEdges->size() / 2},
                        {"boundary_edges", boundaryCount(*tables.triEdges)}};
    return conversion.report(facts, summary(facts));
}

}  // namespace

Run declareAdjacency(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<FileOptions>();
    addFiles(verb, *options, formatsThat(&TessaryMesh::Format::writesArrays));
    verb.footer(kHelp);
    return eachFile(options, session, adjacency);
}

}  // namespace Cli
