#include "Concave.h"
#include "Conversion.h"
#include "EachFile.h"
#include "MeshFacts.h"
#include "Verbs.h"

#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(Every face becomes a fan of triangles around its first corner, or with --concave split other
triangles where that would leave the face. Points keep their order;
values of points, faces and corners follow, indexed ones stay indexed.

Example:
  tessary triangulate roof.obj -o roof_triangles.ply --properties texcoord)";

using Korvane::Object;

struct Options : FileOptions {
    std::string properties = "all";
    std::string concave = "fan";
};

std::string change(const Json& facts, const char* what)
{
    const Json& before = facts["before"][what];
    const Json& after = facts["after"][what];
    return std::string(what) + " " + before.dump() + (before == after ? "" : " -> " + after.dump());
}

std::string summary(const Json& facts)
{
    return change(facts, "points") + ", " + change(facts, "corners") + ", " +
           change(facts, "faces") + concaveText(facts) + "; " + carriedText(facts);
}

ExitCode triangulate(const Options& options, Session& session)
{
    Conversion conversion(options, session);
    const Object& mesh = conversion.mesh();
    const TessaryMesh::Concave concave = concaveOf(options.concave);
    const Json concaveFaces = tellConcave(conversion, concave, session);
    const TessaryMesh::Result result = conversion.run("triangulate", "triangulating", [&] {
        return TessaryMesh::triangulate(mesh, selectProperties(mesh, options.properties), concave);
    });
    session.warn(result.warnings);
    conversion.write(result);
    const Json facts = {{"before", countsOf(mesh)},
                        {"after", countsOf(*result.mesh)},
                        {"concave_faces", concaveFaces},
                        {"properties", carriedNames(*result.mesh)}};
    return conversion.report(facts, summary(facts));
}

}  // namespace

Run declareTriangulate(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, formatsThat(&TessaryMesh::Format::writesMeshes));
    addMaps(verb, *options, "face");
    addProperties(verb, options->properties);
    addConcave(verb, options->concave);
    verb.footer(kHelp);
    return eachFile(options, session, triangulate);
}

}  // namespace Cli
