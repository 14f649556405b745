#include "Concave.h"
#include "Conversion.h"
#include "EachFile.h"
#include "MeshFacts.h"
#include "Numbers.h"
#include "Verbs.h"
#include "Words.h"

#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(Every face becomes a fan of triangles, every triangle three quads around an inner point.
Values follow: real ones are blended, others picked, indexed ones stay indexed. A creased
edge gets two points, one for each end.

Example:
  tessary quads roof.obj -o roof_quads.obj --crease-angle 30)";

struct Options : FileOptions {
    std::string properties = "all";
    std::string concave = "fan";
    TessaryMesh::QuadOptions quads;
    std::vector<float> innerWeights;
};

std::string summary(const Json& facts)
{
    const auto some = [](const Json& count, const char* what) {
        return counted(count.get<std::uint64_t>(), what);
    };
    const Json &before = facts["before"], &after = facts["after"], &split = facts["split_edges"];
    return some(before["faces"], "face") + " -> " + some(after["faces"], "quad") + ", " +
           before["points"].dump() + " -> " + some(after["points"], "point") + ", " +
           facts["creased_edges"].dump() + " of " + some(facts["edges"], "edge") + " creased" +
           (split == 0 ? "" : ", " + split.dump() + " split") + concaveText(facts) + "; " +
           carriedText(facts);
}

// A PLY file's list of each face is one of corners once the file's header says so.
TessaryMesh::QuadResult quadsOf(const Korvane::Object& mesh, const Options& options)
{
    try {
        return TessaryMesh::makeQuads(mesh, options.quads,
                                      selectProperties(mesh, options.properties));
    } catch (const TessaryMesh::ArgumentError& error) {
        const std::string line =
            TessaryMesh::plyCornerDeclaration(mesh, options.quads.creaseProperty);
        if (error.argument() != "creaseProperty" || line.empty())
            throw;
        throw TessaryMesh::ArgumentError(
            error.argument(), std::string(error.what()) +
                                  " (the list becomes that behind the PLY header line \"" + line +
                                  "\")");
    }
}

ExitCode quads(const Options& options, Session& session)
{
    Conversion conversion(options, session);
    const Korvane::Object& mesh = conversion.mesh();
    const Json concaveFaces = tellConcave(conversion, options.quads.concave, session);
    const TessaryMesh::QuadResult result = conversion.run(
        "quads", "making quads", [&] { return quadsOf(conversion.mesh(), options); });
    session.warn(result.warnings);
    conversion.write(result);
    const Json facts = {{"before", countsOf(mesh)},
                        {"after", countsOf(*result.mesh)},
                        {"concave_faces", concaveFaces},
                        {"edges", result.edges},
                        {"creased_edges", result.creasedEdges},
                        {"split_edges", result.splitEdges},
                        {"properties", carriedNames(*result.mesh)}};
    return conversion.report(facts, summary(facts));
}

// Any three weights that are not negative will do; what counts is their ratio.
void setInnerWeights(Options& options)
{
    if (options.innerWeights.empty())
        return;
    double sum = 0;
    for (const float weight : options.innerWeights)
        sum += weight;
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
            ->type_name("DEGREES")
            ->check(realNumber(0, 180));
    verb.add_option("--crease-property", options.quads.creaseProperty,
                    "Crease by a bool, uchar or float for each corner: the edge that starts there")
        ->type_name("NAME")
        ->excludes(angle);
    verb.add_option("--gap", options.quads.gap,
                    "Open creased edges: this share of the edge, 0 to 1, lies between its points")
        ->type_name("SHARE")
        ->transform(share(0, 1));
}

void checkGap(const Options& options)
{
    const TessaryMesh::QuadOptions& quads = options.quads;
    if (quads.gap != 0 && !quads.creaseAngle && quads.creaseProperty.empty())
        throw UsageError(
            "--gap opens creased edges, and nothing creases any; give --crease-angle or "
            "--crease-property");
}

void addCuts(CLI::App& verb, Options& options)
{
    verb.add_option("--edge-weight", options.quads.edgeWeight,
                    "Cut edges here: the share of their lower-numbered point, 0 to 1; 0.5 without")
        ->type_name("T")
        ->transform(share(0, 1));
    verb.add_option(
            "--inner-weights", options.innerWeights,
            "Cut triangles here: the ratio of their corners' shares, each 0 to 1e+30; 1,1,1 "
            "without")
        ->type_name("A,B,C")
        ->delimiter(',')
        ->check(realNumber(0, 1e30))
        ->expected(3);
    verb.add_flag("--split-edges", options.quads.splitEdges,
                  "Cut edges along which faces run in one direction once for each face");
}

void prepare(Options& options)
{
    setInnerWeights(options);
    checkGap(options);
    options.quads.concave = concaveOf(options.concave);
}

}  // namespace

Run declareQuads(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, formatsThat(&TessaryMesh::Format::writesMeshes));
    addMaps(verb, *options, "face");
    addProperties(verb, options->properties);
    addConcave(verb, options->concave);
    addCreases(verb, *options);
    addCuts(verb, *options);
    verb.footer(kHelp);
    return eachFile(options, session, quads, prepare);
}

}  // namespace Cli
