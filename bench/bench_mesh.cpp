// Mesh files in and out. Files are warm: the system has their bytes in memory. What is read goes into
// fresh memory, what is written comes from touched memory and makes a new file, which nobody waits for the disk
// to hold.

#include "support/Inputs.h"
#include "support/Measure.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using namespace Bench;
using Korvane::Object;
using Korvane::Math::float2;
using Korvane::Math::float3;
using TessaryMesh::Format;
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

void save(const Object& mesh, const Format& format)
{
    TessaryMesh::OutputFile output(benchFile(), true);
    output.skipSync();
    TessaryMesh::writeMesh(mesh, format, output);
    output.commit();
}

std::uint64_t hashOfFile()
{
    std::ifstream file(benchFile(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    return hashBytes(content.data(), content.size());
}

std::uint64_t hashOfMesh(const Object& mesh)
{
    std::uint64_t hash = hashOf(*Geometry::dataArray<uint>(mesh, Geometry::sFaceOffset));
    hash = hashOf(*Geometry::dataArray<uint>(mesh, Geometry::sFaceVertex), hash);
    return hashOf(*Geometry::dataArray<float3>(mesh, Geometry::sPointPosition), hash);
}

// The file's bytes, once: what is read and written in memory is not counted.
Work workOn(const Object& mesh)
{
    return {Geometry::getElementCount(mesh, Geometry::sFaceComp), "triangle",
            std::filesystem::file_size(benchFile()), "the file is in memory"};
}

void read(Row& row, const Object& mesh, const Format& format)
{
    save(mesh, format);
    MutablePtr<Object> result;
    Contender kernel;
    kernel.run = [&] { result = TessaryMesh::readMeshUnchecked(benchFile()).mesh; };
    kernel.clear = [&] { result = nullptr; };
    kernel.hash = [&] { return hashOfMesh(*result); };
    row.measure(workOn(mesh), kernel);
    std::filesystem::remove(benchFile());
}

void write(Row& row, const Object& mesh, const Format& format)
{
    save(mesh, format);
    Contender kernel;
    kernel.run = [&] { save(mesh, format); };
    kernel.hash = hashOfFile;
    row.measure(workOn(mesh), kernel);
    std::filesystem::remove(benchFile());
}

void validate(Row& row, const Object& mesh)
{
    Contender kernel;
    kernel.run = [&] { benchmark::DoNotOptimize(TessaryMesh::validateMesh(mesh)); };
    row.measure({Geometry::getElementCount(mesh, Geometry::sFaceComp), "triangle"}, kernel);
}

constexpr struct {
    const char *row, *format;
} kFormats[] = {
    {"OBJ", "obj"}, {"PLY", "ply"}, {"PLY big-endian", "ply-big"}, {"PLY ASCII", "ply-ascii"}};

}  // namespace

int main(int argc, char** argv)
{
    static Latest<MutablePtr<Object>> latest;
    for (const uint size : {10u, 1000u, 100000u, 600000u, 10000000u, 30000000u}) {
        const auto mesh = [size]() -> const Object& {
            return *latest.get(std::to_string(size), [&] { return attributedTorus(size); });
        };
        for (const auto& [name, formatName] : kFormats) {
            const Format* const format = TessaryMesh::findFormat(formatName);
            addRow({"readMeshUnchecked", name, size},
                   [mesh, format](Row& row) { read(row, mesh(), *format); });
            addRow({"writeMesh", name, size},
                   [mesh, format](Row& row) { write(row, mesh(), *format); });
        }
        addRow({"validateMesh", "triangles", size}, [mesh](Row& row) { validate(row, mesh()); });
    }
    return run(argc, argv);
}
