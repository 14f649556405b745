#include "Conversion.h"
#include "MeshFacts.h"
#include "Verbs.h"

#include <mesh/ops/QuadMesh.h>

#include <CLI/CLI.hpp>
#include <cmath>
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
    TessaryMesh::QuadOptions quads;
    std::vector<float> innerWeights;
};

std::string summary(const Json& facts)
{
    const Json& split = facts["split_edges"];
    return facts["before"]["faces"].dump() + " faces -> " + facts["after"]["faces"].dump() +
           " quads, " + facts["before"]["points"].dump() + " -> " +
           facts["after"]["points"].dump() + " points, " + facts["creased_edges"].dump() + " of " +
           facts["edges"].dump() + " edges creased" +
           (split == 0 ? "" : ", " + split.dump() + " split") + "; " + carriedText(facts);
}

ExitCode quads(const Options& options, Session& session)
{
    Conversion conversion(options, session);
    const Korvane::Object& mesh = conversion.mesh();
    const TessaryMesh::QuadMesh result = conversion.run("quads", "making quads", [&] {
        return TessaryMesh::makeQuadMesh(mesh, options.input,
                                         selectProperties(mesh, options.properties), options.quads);
    });
    session.warn(result.warnings);
    conversion.write(*result.mesh);
    const Json facts = {{"before", countsOf(mesh)},
                        {"after", countsOf(*result.mesh)},
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

// The parser alone takes an empty word, as of an unset variable, for 0.
CLI::Validator numberFrom(const std::string& range)
{
    const auto fault = [range](const std::string& word) {
        double number = 0;
        const bool isNumber = !word.empty() && CLI::detail::lexical_cast(word, number);
        return isNumber ? std::string()
                        : "expected a number from " + range + ", found \"" + word + "\"";
    };
    return CLI::Validator(fault, "");
}

void addCreases(CLI::App& verb, Options& options)
{
    CLI::Option* const angle =
        verb.add_option_function<double>(
                "--crease-angle",
                [&options](double degrees) { options.quads.creaseAngle = degrees; },
                "Crease the edges at which faces meet at more than this, 0 to 180")
            ->type_name("DEGREES")
            ->check(numberFrom("0 to 180"));
    verb.add_option("--crease-property", options.quads.creaseProperty,
                    "Crease by a bool, uchar or float for each corner: the edge that starts there")
        ->type_name("NAME")
        ->excludes(angle);
    verb.add_option("--gap", options.quads.gap,
                    "Open creased edges: this share of the edge, 0 to 1, lies between its points")
        ->type_name("SHARE")
        ->check(numberFrom("0 to 1"));
}

void addCuts(CLI::App& verb, Options& options)
{
    verb.add_option("--edge-weight", options.quads.edgeWeight,
                    "Cut edges here: the share of their lower-numbered point, 0 to 1; 0.5 without")
        ->type_name("T")
        ->check(numberFrom("0 to 1"));
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
    addFiles(verb, *options, meshFormats());
    addProperties(verb, options->properties);
    addCreases(verb, *options);
    addCuts(verb, *options);
    verb.footer(kHelp);
    return [options, &session] {
        setInnerWeights(*options);
        return quads(*options, session);
    };
}

}  // namespace Cli
