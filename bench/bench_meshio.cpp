// Mesh files in and out on one thread. Files are warm: the system has their bytes in memory. What is
// read goes into fresh memory, what is written comes from touched memory.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Geometry.h>
#include <meshio/MeshFile.h>
#include <meshio/OutputFile.h>
#include <meshio/Validate.h>

#include <filesystem>
#include <string>

using namespace Bench;
using Korvane::Object;
using Korvane::Math::float2;
using Korvane::Math::float3;
using MeshIo::MeshFormat;
using Pelon::makeMutable;
using Pelon::MutablePtr;
namespace Geometry = Korvane::Geometry;

namespace {

// Triangles with normals on points, UVs on corners and an id on faces.
MutablePtr<Object> attributedTorus(uint triangleCount)
{
    const Triangles torus = triangleTorus(triangleCount, PointOrder::Natural);
    const Array<float> values = randomFloats(std::size_t{3} * torus.pointCount, 7);
    Array<float3> points(torus.pointCount);
    for (std::size_t p = 0; p < points.size(); ++p)
        points[p] = {values[3 * p], values[3 * p + 1], values[3 * p + 2]};
    Array<float2> uv(torus.faceVertex.size());
    for (std::size_t c = 0; c < uv.size(); ++c)
        uv[c] = {values[c % values.size()], values[(5 * c) % values.size()]};
    Array<uint> offsets(std::size_t{torus.triangleCount()} + 1);
    for (uint t = 0; t < offsets.size(); ++t)
        offsets[t] = 3 * t;
    const Array<float3> normals = points;
    MutablePtr<Object> mesh =
        Geometry::makeMesh(std::move(points), std::move(offsets), torus.faceVertex);
    Geometry::addDataGeoProperty<float3>(*mesh, "normal", Geometry::sPointComp,
                                         makeMutable<Array<float3>>(normals));
    Geometry::addDataGeoProperty<float2>(*mesh, "texcoord", Geometry::sFaceVertexComp,
                                         makeMutable<Array<float2>>(std::move(uv)));
    Geometry::addDataGeoProperty<uint>(*mesh, "face_id", Geometry::sFaceComp,
                                       makeMutable<Array<uint>>(torus.triangleCount(), 7u));
    return mesh;
}

std::string benchFile()
{
    return (std::filesystem::temp_directory_path() / "tessary_bench.mesh").string();
}

std::int64_t save(const Object& mesh, MeshFormat format)
{
    MeshIo::OutputFile output(benchFile(), true);
    MeshIo::writeMesh(mesh, format, output);
    output.commit();
    return static_cast<std::int64_t>(std::filesystem::file_size(benchFile()));
}

void reportBytes(benchmark::State& state, std::int64_t bytes)
{
    state.SetBytesProcessed(bytes * static_cast<std::int64_t>(state.iterations()));
    state.counters["file_MB"] = 1e-6 * static_cast<double>(bytes);
}

void read(benchmark::State& state, const Object& mesh, MeshFormat format)
{
    const std::int64_t bytes = save(mesh, format);
    for (auto _ : state)
        benchmark::DoNotOptimize(MeshIo::readMeshUnchecked(benchFile()));
    reportBytes(state, bytes);
    std::filesystem::remove(benchFile());
}

void write(benchmark::State& state, const Object& mesh, MeshFormat format)
{
    std::int64_t bytes = 0;
    for (auto _ : state)
        bytes = save(mesh, format);
    reportBytes(state, bytes);
    std::filesystem::remove(benchFile());
}

void validate(benchmark::State& state, const Object& mesh)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(MeshIo::validateMesh(mesh));
}

}  // namespace

int main(int argc, char** argv)
{
    const MutablePtr<Object> mesh = attributedTorus(600000);
    const struct {
        const char* name;
        MeshFormat format;
    } formats[] = {{"OBJ", MeshFormat::Obj},
                   {"PLY", MeshFormat::PlyBinary},
                   {"PLY big-endian", MeshFormat::PlyBinaryBigEndian},
                   {"PLY ASCII", MeshFormat::PlyAscii}};
    for (const auto& [name, format] : formats) {
        const auto add = [&mesh, format = format](const std::string& row, const auto& run) {
            benchmark::RegisterBenchmark(row.c_str(), [&mesh, format,
                                                       run](benchmark::State& state) {
                run(state, *mesh, format);
            })->Unit(benchmark::kMillisecond);
        };
        add(std::string("read/") + name, read);
        add(std::string("write/") + name, write);
    }
    benchmark::RegisterBenchmark("validate", [&mesh](benchmark::State& state) {
        validate(state, *mesh);
    })->Unit(benchmark::kMillisecond);
    return run(argc, argv);
}
