// Any bytes that are a mesh: every operation runs on it, and whatever it makes is written in every format
// and read back. What a format cannot hold is lost the first time; the second time nothing is.

#include "fuzz/Limits.h"
#include "tests/support/Files.h"
#include "tests/support/SameMesh.h"

#include <mesh/files/Formats.h>

#include <TessaryMesh/Check.h>
#include <TessaryMesh/Operations.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace TessaryMesh;
using Korvane::Object;
using Pelon::Ptr;

constexpr std::size_t kMostCorners = 4096;  // larger meshes only take longer

// On a file system in memory: a case takes a millisecond, not the time of a disk.
std::string writtenAs(const Format& format, const Object& mesh)
{
    static const std::string kPath = "/dev/shm/tessary-fuzz-" + std::to_string(::getpid());
    {
        OutputFile output(kPath, true);
        writeMesh(mesh, format, output);
        output.commit();
    }
    std::string bytes = TestSupport::contentOf(kPath);
    ::unlink(kPath.c_str());
    return bytes;
}

Ptr<Object> readBack(const Format& format, const std::string& bytes)
{
    try {
        return rowOf(format).functions.read(bytes, "f").mesh;
    } catch (const Error& error) {
        Fuzz::require(false, std::string(format.name) + " reads what it writes: " + error.what());
        return nullptr;
    }
}

void roundTrip(const Format& format, const Object& mesh)
{
    try {
        const std::string bytes = writtenAs(format, mesh);
        const Ptr<Object> first = readBack(format, bytes);
        Fuzz::require(!validateMesh(*first).hasErrors(), "what is written is valid");
        const Ptr<Object> second = readBack(format, writtenAs(format, *first));
        const std::string difference = MeshFiles::firstDifference(*first, *second);
        Fuzz::require(difference.empty(),
                      std::string(format.name) + " keeps \"" + difference + '"');
    } catch (const FileError&) {  // a format may refuse a mesh, by name
    } catch (const InvalidMesh&) {
    }
}

void roundTrips(const Object& mesh)
{
    for (const Format* const format : formats())
        if (format->writesMeshes && format->readsMeshes)
            roundTrip(*format, mesh);
}

// The errors of a mesh that an operation refuses are its own affair; anything else ends the run.
template <class Work>
void tryTo(const Work& work)
{
    try {
        work();
    } catch (const Error&) {
    }
}

double sizeOf(const Object& mesh)
{
    double size = 0;
    for (const auto& p : *Korvane::Geometry::dataArray<Korvane::Math::float3>(
             mesh, Korvane::Geometry::sPointPosition))
        size = std::max(
            {size, std::fabs(double{p.x}), std::fabs(double{p.y}), std::fabs(double{p.z})});
    return size;
}

void operateOn(const Object& mesh, std::uint8_t choice)
{
    tryTo([&] { roundTrips(*triangulate(mesh).mesh); });
    tryTo([&] {
        QuadOptions options;
        options.creaseAngle = choice;
        options.splitEdges = choice % 2 == 0;
        options.gap = static_cast<float>(choice) / 256;
        roundTrips(*makeQuads(mesh, options).mesh);
    });
    tryTo([&] { makeTriangleTables(mesh).arrays(); });
    tryTo([&] { shapeOf(mesh); });
    tryTo([&] { edgeWarnings(mesh); });
    tryTo([&] {
        SampleOptions options;
        options.count = 1u + choice % 64u;
        options.seed = choice;
        sample(mesh, options);
    });
    tryTo([&] {
        const double cell = sizeOf(mesh) / (1 + choice % 8);
        roundTrips(*makeCubes(touchedCells(mesh, cell), cell));
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::useOneThread();
    if (size == 0)
        return 0;
    const std::string bytes(reinterpret_cast<const char*>(data), size - 1);
    Ptr<Object> mesh;
    tryTo([&] { mesh = rowOfContent(bytes).functions.read(bytes, "f").mesh; });
    if (!mesh || validateMesh(*mesh).hasErrors() ||
        Korvane::Geometry::getElementCount(*mesh, Korvane::Geometry::sFaceVertexComp) >
            kMostCorners)
        return 0;
    roundTrips(*mesh);
    operateOn(*mesh, data[size - 1]);
    return 0;
}
