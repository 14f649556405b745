#include "Concave.h"
#include "Conversion.h"
#include "EachFile.h"
#include "MeshFacts.h"
#include "Numbers.h"
#include "Verbs.h"
#include "Words.h"

#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>

namespace Cli {
namespace {

constexpr const char* kHelp =
    R"(Scatters points over the faces, taken as fans of triangles. Every sample has its face, its
triangle, the weights of the triangle's corners, a normal and the mesh's values: real ones
blended, others picked. A FILE that ends in .npz gets arrays for NumPy.

Example:
  tessary sample roof.obj -o roof_samples.ply --distance 2%)";

using TessaryMesh::SampledSurface;
using TessaryMesh::SurfaceSamples;

struct Options : FileOptions {
    std::string properties = "all";
    std::string concave = "fan";
    std::string distance;  // as length() takes it; empty for a count
    std::uint64_t count = 0;
    std::uint32_t seed = 0;
};

void rejectNoDensity(Options& options)
{
    if (options.distance.empty() == (options.count == 0))
        throw UsageError("say how dense the samples are to be: --distance D or --count N");
}

SurfaceSamples samplesOf(const SampledSurface& surface, const Korvane::Object& mesh,
                         const Options& options)
{
    if (options.distance.empty())
        return surface.sampleCount(options.count, options.seed);
    const double length = lengthIn(mesh, options.distance, "--distance");
    if (length > 3e38 || static_cast<float>(length) == 0)
        throw UsageError(options.input + ": the distance " + options.distance +
                         " is outside what single precision holds (scale the mesh)");
    return surface.sample(static_cast<float>(length), options.seed);
}

void warnAbout(const SampledSurface& surface, const SurfaceSamples& samples, const Options& options,
               Session& session)
{
    const std::string count = std::to_string(samples.count());
    const std::uint64_t n = samples.count(), wanted = options.count;
    const bool isNear = (n > wanted ? n - wanted : wanted - n) * 50 <= wanted;
    if (options.distance.empty() && !isNear)
        session.warn(counted(wanted, "sample") + (wanted == 1 ? " was" : " were") +
                     " asked for; the nearest found is " + count + ", at the distance " +
                     Json(briefly(samples.distance)).dump());
    else if (n == 0)
        session.warn("no sample at this distance (a smaller one gives some)");
    const double share = surface.roundingShare(samples.distance);
    if (share > 0.01) {
        char text[32];
        std::snprintf(text, sizeof text, "%.0f %%", std::min(100.0, 100 * share));
        session.warn(
            std::string("the mesh is so far from the origin that coordinates are rounded by ") +
            text + " of the distance (move it to the origin)");
    }
}

SurfaceSamples noSamples()
{
    return {Pelon::makeMutable<Pelon::Array<Korvane::Math::float3>>(),
            Pelon::makeMutable<Pelon::Array<float>>(),
            Pelon::makeMutable<Pelon::Array<Pelon::uint>>()};
}

Json factsOf(const Options& options, double area, const SurfaceSamples& samples,
             const std::optional<double>& smallest)
{
    const bool isCount = options.distance.empty();
    return {{"samples", samples.count()},
            {"distance", briefly(samples.distance)},
            {"distance_asked", isCount ? Json() : Json(options.distance)},
            {"count_asked", isCount ? Json(options.count) : Json()},
            {"smallest_distance", smallest ? Json(*smallest) : Json()},
            {"area", area},
            {"density", area > 0 ? static_cast<double>(samples.count()) / area : 0.0},
            {"seed", options.seed}};
}

std::string brief(const Json& number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number.get<double>());
    return text;
}

std::string summary(const Json& facts)
{
    const Json& smallest = facts["smallest_distance"];
    return counted(facts["samples"].get<std::uint64_t>(), "sample") + " at distance " +
           facts["distance"].dump() +
           (smallest.is_null() ? "" : ", smallest found " + brief(smallest)) + "; area " +
           brief(facts["area"]) + ", density " + brief(facts["density"]) + ", seed " +
           facts["seed"].dump() + concaveText(facts) + "; with " + joined(facts["properties"]);
}

ExitCode sample(const Options& options, Session& session)
{
    Conversion conversion(options, session);
    const Korvane::Object& mesh = conversion.mesh();
    const TessaryMesh::Carry carry = selectProperties(mesh, options.properties);
    const TessaryMesh::Concave concave = concaveOf(options.concave);
    const Json concaveFaces = tellConcave(conversion, concave, session);
    TessaryMesh::Result split{nullptr, {}, {}};
    if (concave == TessaryMesh::Concave::Split)
        split = conversion.run("split", "splitting concave faces",
                               [&] { return TessaryMesh::splitConcaveFaces(mesh, carry); });
    session.warn(split.warnings);
    const Korvane::Object& fans = split.mesh ? *split.mesh : mesh;
    double area = 0;
    SurfaceSamples samples = noSamples();
    if (conversion.hasFaces()) {
        const SampledSurface surface =
            conversion.run("prepare", "measuring", [&] { return SampledSurface(fans); });
        area = surface.area();
        samples =
            conversion.run("sample", "sampling", [&] { return samplesOf(surface, mesh, options); });
        warnAbout(surface, samples, options, session);
    }
    const TessaryMesh::Result result = conversion.run("properties", "carrying properties", [&] {
        return TessaryMesh::makeSampleCloud(fans, samples, carry,
                                            conversion.format().namesProperties, split.parents);
    });
    session.warn(result.warnings);
    const auto smallest = conversion.run("distances", "measuring distances", [&] {
        return TessaryMesh::smallestDistance(*samples.positions, samples.distance);
    });
    conversion.write(result);
    Json facts = {{"before", countsOf(mesh)}};
    facts.update(factsOf(options, area, samples, smallest));
    facts["concave_faces"] = concaveFaces;
    facts["properties"] = carriedNames(*result.mesh);
    return conversion.report(facts, summary(facts));
}

}  // namespace

Run declareSample(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    addFiles(verb, *options, formatsThat(&TessaryMesh::Format::writesClouds));
    CLI::Option* const distance =
        verb.add_option(
                "--distance,-d", options->distance,
                "No two samples are closer than this: a length, or percent of the radius of the "
                "smallest sphere around the mesh, as in 2%")
            ->type_name("D")
            ->check(length());
    verb.add_option("--count,-n", options->count,
                    "Find the distance for about this many samples, 1 to 4000000000")
        ->type_name("N")
        ->check(wholeNumber(1, 4000000000))
        ->excludes(distance);
    verb.add_option("--seed", options->seed,
                    "Draw other samples: 0 without this option, to 4294967295")
        ->type_name("N")
        ->check(wholeNumber(0, 4294967295));
    addMaps(verb, *options, "sample");
    addProperties(verb, options->properties);
    addConcave(verb, options->concave);
    verb.footer(kHelp);
    return eachFile(options, session, sample, rejectNoDensity);
}

}  // namespace Cli
