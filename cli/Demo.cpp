#include "MeshFacts.h"
#include "Options.h"
#include "Stopwatch.h"
#include "Verbs.h"

#include <Korvane/Geometry.h>
#include <Tessary/Tessary.h>
#include <meshio/DemoMesh.h>
#include <meshio/OutputFile.h>
#include <meshio/QuadMesh.h>
#include <meshio/ReadFile.h>
#include <meshio/SampleCloud.h>
#include <meshio/SampledSurface.h>
#include <meshio/TriangulateMesh.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

namespace Cli {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using MeshIo::MeshFormat;
using Pelon::Array;
using Pelon::uint;
using Tessary::HalfEdge;

constexpr uint kNone = 0xFFFFFFFF;
constexpr uint kLeastResolution = 8;
constexpr uint kMostResolution = 2048;

struct Options {
    std::string folder;
    uint resolution = 64;
};

// One line of the table: what was called, what came of it, how long it took.
class Steps {
public:
    explicit Steps(Session& session) : m_session(session) {}

    template <class Work>
    void run(const std::string& name, Work&& work)
    {
        m_session.beginStage(name);
        Stopwatch watch;
        const std::string result = work();
        const double seconds = watch.lap();
        m_facts.push_back({{"step", name}, {"result", result}, {"seconds", seconds}});
        char line[64];
        std::snprintf(line, sizeof line, "%10.2f ms  %-22s", seconds * 1e3, name.c_str());
        m_text += line + result + "\n";
    }

    const Json& facts() const { return m_facts; }
    const std::string& text() const { return m_text; }

private:
    Session& m_session;
    Json m_facts = Json::array();
    std::string m_text;
};

std::string countsText(const Object& mesh)
{
    const Json counts = countsOf(mesh);
    return counts["points"].dump() + " points, " + counts["corners"].dump() + " corners, " +
           counts["faces"].dump() + " faces";
}

// A closed mesh as the half-edge functions see it: its polygons, its triangles and their dual.
struct Views {
    Pelon::Ptr<Array<uint>> faceOffset, faceVertex;
    Array<uint> triFaceOffset, triFaceVertex;
    Array<uint> dualFaceOffset, dualFaceVertex;
    Array<uint> triEdges, adjacentTri;
};

std::string triangulateViews(const Object& mesh, Views& views)
{
    views.faceOffset = dataArray<uint>(mesh, sFaceOffset);
    views.faceVertex = dataArray<uint>(mesh, sFaceVertex);
    const bool done = Tessary::computeTriangulation(*views.faceOffset, *views.faceVertex,
                                                    views.triFaceOffset, views.triFaceVertex);
    if (!done)
        throw std::runtime_error("computeTriangulation failed on the demo mesh");
    return std::to_string(views.triFaceVertex.size() / 3) + " triangles";
}

std::string dualOfTriangles(const Object& mesh, Views& views)
{
    views.dualFaceOffset = Array<uint>(std::size_t{getElementCount(mesh, sPointComp)} + 1, 0u);
    views.dualFaceVertex = Array<uint>(views.triFaceVertex.size(), kNone);
    Tessary::constructDualMesh(views.triFaceVertex, views.dualFaceOffset, views.dualFaceVertex);
    return std::to_string(views.dualFaceVertex.size()) + " triangle corners listed by point";
}

std::string dualOfPolygons(const Object& mesh)
{
    Object copy = mesh;
    Tessary::addDual(copy, sPointComp, sFaceVertex, "dual_component", "dual_face_vertex",
                     "dual_face_offset");
    return std::to_string(getElementCount(copy, "dual_component")) +
           " polygon corners listed by point";
}

// Every edge of a polygon has to survive the way into the triangle view and back, and on a closed
// mesh it has a neighbour whose neighbour it is itself.
bool isConsistent(const Views& views, HalfEdge polyEdge)
{
    const HalfEdge edge = Tessary::polyEdgeToTriEdge(*views.faceOffset, polyEdge);
    const HalfEdge back = Tessary::triEdgeToPolyEdge(*views.faceOffset, edge);
    const auto neighbour = [&views](HalfEdge of) {
        return Tessary::findAdjacentHalfEdge(views.triFaceVertex, views.dualFaceOffset,
                                             views.dualFaceVertex, of);
    };
    const HalfEdge twin = neighbour(edge);
    return back.faceVertex == polyEdge.faceVertex && back.face == polyEdge.face &&
           views.triFaceVertex[edge.faceVertex] == (*views.faceVertex)[polyEdge.faceVertex] &&
           twin.faceVertex != kNone && neighbour(twin).faceVertex == edge.faceVertex;
}

std::string checkHalfEdges(const Views& views, std::size_t& wrong)
{
    const Array<uint>& offset = *views.faceOffset;
    for (uint face = 0; face + 1 < offset.size(); ++face) {
        MeshIo::throwIfCancelled();
        for (uint corner = offset[face]; corner < offset[face + 1]; ++corner)
            wrong += isConsistent(views, {corner, face}) ? 0 : 1;
    }
    return std::to_string(views.faceVertex->size()) + " half-edges there and back, " +
           std::to_string(wrong) + " wrong";
}

// On a closed mesh every edge has two half-edges, each of which names the other's triangle.
std::string checkAdjacency(Views& views, std::size_t& wrong)
{
    Tessary::populateAdjacentTri(views.triFaceVertex, views.dualFaceOffset, views.dualFaceVertex,
                                 views.adjacentTri);
    std::size_t different = views.triEdges.size() == views.triFaceVertex.size() ? 0 : 1;
    for (std::size_t e = 0; e + 1 < views.triEdges.size(); e += 2) {
        const uint one = views.triEdges[e], other = views.triEdges[e + 1];
        const bool agree = other != kNone && views.adjacentTri[one] == other / 3 &&
                           views.adjacentTri[other] == one / 3;
        different += agree ? 0 : 1;
    }
    wrong += different;
    return std::to_string(views.adjacentTri.size()) + " neighbours, " + std::to_string(different) +
           " other than in the edge table";
}

std::string quadsOfTriangles(const Object& mesh, const Views& views)
{
    const uint pointCount = getElementCount(mesh, sPointComp);
    Array<uint> quadFaceVertex;
    const uint end = Tessary::computeQuadMesh(views.triFaceVertex, views.triEdges,
                                              Array<bool>(views.triFaceVertex.size()), pointCount,
                                              quadFaceVertex);
    return std::to_string(quadFaceVertex.size() / 4) + " quads, " +
           std::to_string(end - pointCount) + " new points";
}

void runKernels(const Object& mesh, Steps& steps, std::size_t& wrong)
{
    Views views;
    steps.run("computeTriangulation", [&] { return triangulateViews(mesh, views); });
    steps.run("constructDualMesh", [&] { return dualOfTriangles(mesh, views); });
    steps.run("addDual", [&] { return dualOfPolygons(mesh); });
    steps.run("half-edges", [&] { return checkHalfEdges(views, wrong); });
    steps.run("computeTriEdges", [&] {
        Tessary::computeTriEdges(views.triFaceVertex, views.triEdges);
        return std::to_string(views.triEdges.size() / 2) + " edges";
    });
    steps.run("populateAdjacentTri", [&] { return checkAdjacency(views, wrong); });
    steps.run("computeQuadMesh", [&] { return quadsOfTriangles(mesh, views); });
}

// As far apart as two percent of the radius, whatever the resolution.
MeshIo::SurfaceSamples samplesOf(const Object& mesh, Steps& steps)
{
    MeshIo::SurfaceSamples samples;
    steps.run("poissonSampleTriMesh", [&] {
        const MeshIo::SampledSurface surface(mesh, "demo");
        samples = surface.sample(0.02f * surface.boundingRadius(), 0);
        char distance[32];
        std::snprintf(distance, sizeof distance, "%.4g", double{samples.distance});
        return std::to_string(samples.count()) + " samples, " + distance + " apart";
    });
    return samples;
}

void write(const Object& mesh, const std::string& path, Session& session, Steps& steps)
{
    const MeshFormat format = *MeshIo::formatOfName(path);
    steps.run("write", [&] {
        MeshIo::OutputFile file(path, true);
        for (const std::string& warning : MeshIo::writeMesh(mesh, format, file))
            session.warn(path + ": " + warning);
        session.beginStage("finishing " + path);
        file.commit();
        return path;
    });
}

void makeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw MeshIo::FileError(folder + ": cannot make this folder: " + error.message() +
                                " (choose another with --output)");
}

ExitCode demo(const Options& options, Session& session)
{
    makeFolder(options.folder);
    const auto path = [&options](const char* name) {
        return (std::filesystem::path(options.folder) / name).string();
    };
    Steps steps(session);
    std::size_t wrong = 0;

    Pelon::Ptr<Object> mesh, triangles, quads, samples;
    steps.run("makeDemoMesh", [&] {
        mesh = MeshIo::makeDemoMesh(options.resolution);
        return countsText(*mesh);
    });
    runKernels(*mesh, steps, wrong);
    steps.run("triangulatePolyMesh", [&] {
        auto result = MeshIo::triangulateMesh(*mesh, MeshIo::carriedPropertyNames(*mesh));
        session.warn(result.warnings);
        triangles = result.mesh;
        return countsText(*triangles) + "; " + joined(carriedNames(*triangles));
    });
    steps.run("quads", [&] {
        auto result = MeshIo::makeQuadMesh(*mesh, "demo", MeshIo::carriedPropertyNames(*mesh), {});
        session.warn(result.warnings);
        quads = result.mesh;
        return countsText(*quads) + "; " + joined(carriedNames(*quads));
    });
    const MeshIo::SurfaceSamples found = samplesOf(*mesh, steps);
    steps.run("sample", [&] {
        auto result = MeshIo::makeSampleCloud(*mesh, found, MeshIo::carriedPropertyNames(*mesh));
        session.warn(result.warnings);
        samples = result.cloud;
        return std::to_string(found.count()) + " points; " + joined(carriedNames(*samples));
    });
    write(*mesh, path("demo.obj"), session, steps);
    write(*mesh, path("demo.ply"), session, steps);
    write(*triangles, path("demo_triangles.obj"), session, steps);
    write(*triangles, path("demo_triangles.ply"), session, steps);
    write(*quads, path("demo_quads.ply"), session, steps);
    write(*samples, path("demo_samples.ply"), session, steps);

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
                    "512 for about a million, 2048 at most")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(kLeastResolution, kMostResolution).description(""));
    verb.footer("Replaces demo files of an earlier run.\n\nExample:\n  tessary demo --output demo");
    return [options, &session] { return demo(*options, session); };
}

}  // namespace Cli
