#include "MeshFacts.h"
#include "Options.h"
#include "Verbs.h"
#include "Words.h"

#include <Korvane/Geometry.h>
#include <Tessary/Primitives.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

ExitCode sphere(const std::string& path, Session& session)
{
    const TessaryMesh::MeshRead input = readInput(session, path);
    session.beginStage("measuring");
    const auto points = Korvane::Geometry::dataArray<Korvane::Math::float3>(
        *input.mesh, Korvane::Geometry::sPointPosition);
    const Tessary::Sphere found = Tessary::computeBoundingSphere(*points);
    if (!std::isfinite(found.getRadius()))
        session.warn("the square of the radius is too large for a float; scale the mesh down");

    const Json center = vectorOf(found.getCenter());
    const double radius = briefly(found.getRadius());
    const std::string at = center[0].dump() + " " + center[1].dump() + " " + center[2].dump();
    const std::string text =
        session.settings.isBatch
            ? shown(path) + ": center " + at + ", radius " + Json(radius).dump() + "\n"
            : "center  " + at + "\nradius  " + Json(radius).dump() + "\n";
    session.finish({{"verb", "sphere"},
                    {"file", path},
                    {"points", points->size()},
                    {"center", center},
                    {"radius", radius}},
                   text);
    return ExitCode::Done;
}

}  // namespace

Run declareSphere(CLI::App& verb, Session& session)
{
    verb.footer(
        "The smallest sphere around all points, those that no face uses too.\n\n"
        "Example:\n  tessary sphere roof.obj");
    return declareReport(verb, session, sphere);
}

}  // namespace Cli
