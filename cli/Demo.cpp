#include "DemoKernels.h"
#include "MeshFacts.h"
#include "Numbers.h"
#include "OutputNames.h"
#include "Verbs.h"

#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

using Korvane::Object;
using Pelon::uint;

constexpr uint kLeastResolution = 8;
constexpr uint kMostResolution = 2048;

struct Options {
    std::string folder;
    uint resolution = 64;
};

std::string countsText(const Object& mesh)
{
    const Json counts = countsOf(mesh);
    return counts["points"].dump() + " points, " + counts["corners"].dump() + " corners, " +
           counts["faces"].dump() + " faces";
}

// As far apart as two percent of the radius, whatever the resolution.
TessaryMesh::SurfaceSamples samplesOf(const Object& mesh, Steps& steps)
{
    TessaryMesh::SurfaceSamples samples;
    steps.run("poissonSampleTriMesh", [&] {
        const TessaryMesh::SampledSurface surface(mesh);
        samples = surface.sample(0.02f * surface.boundingRadius(), 0);
        char distance[32];
        std::snprintf(distance, sizeof distance, "%.4g", double{samples.distance});
        return std::to_string(samples.count()) + " samples, " + distance + " apart";
    });
    return samples;
}

// A step that carries every property of the demo mesh to what it makes.
template <class Make>
Pelon::Ptr<Object> carry(const std::string& name, const Object& mesh, Session& session,
                         Steps& steps, const Make& make)
{
    Pelon::Ptr<Object> made;
    steps.run(name, [&] {
        auto result = make(mesh);
        session.warn(result.warnings);
        made = result.mesh;
        return countsText(*made) + "; " + joined(carriedNames(*made));
    });
    return made;
}

Pelon::Ptr<Object> sampleCloudOf(const Object& mesh, Session& session, Steps& steps)
{
    const TessaryMesh::SurfaceSamples samples = samplesOf(mesh, steps);
    Pelon::Ptr<Object> cloud;
    steps.run("sample", [&] {
        auto result = TessaryMesh::makeSampleCloud(mesh, samples);
        session.warn(result.warnings);
        cloud = result.mesh;
        return std::to_string(samples.count()) + " points; " + joined(carriedNames(*cloud));
    });
    return cloud;
}

void write(const Object& mesh, const std::filesystem::path& file, Session& session, Steps& steps)
{
    const std::string path = file.string(), prefix = path + ": ";
    const TessaryMesh::Format& format = *TessaryMesh::formatOfName(path);
    steps.run("write", [&] {
        TessaryMesh::OutputFile output(path, true);
        for (std::string& warning : TessaryMesh::writeMesh(mesh, format, output))
            session.warn(warning.insert(0, prefix));
        session.beginStage("finishing " + path);
        output.commit();
        return file.string();
    });
}

void makeAndWrite(const Object& mesh, const std::filesystem::path& folder, Session& session,
                  Steps& steps)
{
    const auto triangles = carry("triangulatePolyMesh", mesh, session, steps,
                                 [](const Object& of) { return TessaryMesh::triangulate(of); });
    const auto quads = carry("quads", mesh, session, steps,
                             [](const Object& of) { return TessaryMesh::makeQuads(of); });
    const auto samples = sampleCloudOf(mesh, session, steps);
    write(mesh, folder / "demo.obj", session, steps);
    write(mesh, folder / "demo.ply", session, steps);
    write(*triangles, folder / "demo_triangles.obj", session, steps);
    write(*triangles, folder / "demo_triangles.ply", session, steps);
    write(*quads, folder / "demo_quads.ply", session, steps);
    write(*samples, folder / "demo_samples.ply", session, steps);
}

ExitCode demo(const Options& options, Session& session)
{
    makeFolder(options.folder);
    Steps steps(session);
    Pelon::Ptr<Object> mesh;
    steps.run("makeDemoMesh", [&] {
        mesh = TessaryMesh::makeDemoMesh(options.resolution);
        return countsText(*mesh);
    });
    const std::size_t wrong = runKernels(*mesh, steps);
    makeAndWrite(*mesh, options.folder, session, steps);
    session.finish(
        {{"verb", "demo"},
         {"output", options.folder},
         {"resolution", options.resolution},
         {"wrong_half_edges", wrong},
         {"steps", steps.facts()}},
        steps.text() + "Open the files in " + options.folder + " with any mesh viewer.\n");
    return wrong == 0 ? ExitCode::Done : ExitCode::CheckFailed;
}

}  // namespace

Run declareDemo(CLI::App& verb, Session& session)
{
    const auto options = std::make_shared<Options>();
    verb.add_option("--output,-o", options->folder, "Folder to write into; made where missing")
        ->type_name("DIR")
        ->required();
    verb.add_option("--resolution", options->resolution,
                    "Segments along the shorter way round the demo mesh: 8 for hundreds of faces,\n"
                    "512 for about a million, 2048 at most; 64 without this option")
        ->type_name("N")
        ->check(wholeNumber(kLeastResolution, kMostResolution));
    verb.footer("Replaces demo files of an earlier run.\n\nExample:\n  tessary demo --output demo");
    return [options, &session] { return demo(*options, session); };
}

}  // namespace Cli
