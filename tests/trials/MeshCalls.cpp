#include "trials/Calls.h"
#include "trials/Hash.h"

#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>
#include <TessaryMesh/Operations.h>
#include <TessaryMesh/Page.h>

#include <fcntl.h>
#include <unistd.h>

namespace Trials {
namespace {

using namespace TessaryMesh;
using Korvane::Object;
using Pelon::Ptr;
using Pelon::uint;

std::uint64_t hashOfResult(const Result& result)
{
    Hash hash;
    hash.add(hashOfObject(*result.mesh));
    for (const IndexArray& map :
         {result.parents.face, result.parents.corner, result.parents.triangle})
        if (map)
            hash.add(*map);
    return hash.value();
}

std::uint64_t hashOfProblems(const std::vector<Problem>& problems)
{
    Hash hash;
    for (const Problem& problem : problems) {
        hash.add(std::string(problem.code));
        hash.add(problem.count);
    }
    return hash.value();
}

std::uint64_t hashOfArrays(const NamedArrays& arrays)
{
    Hash hash;
    for (const NamedArray& array : arrays) {
        hash.add(array.name);
        Korvane::visitArray(array.values, [&](const auto& a, const char*) { hash.add(*a); });
    }
    return hash.value();
}

QuadOptions creasedQuads()
{
    QuadOptions options;
    options.creaseAngle = 10;
    options.gap = 0.1f;
    options.concave = Concave::Split;
    return options;
}

SampleOptions samplesOf(float distance, std::uint64_t count)
{
    SampleOptions options;
    options.distance = distance;
    options.count = count;
    options.seed = 3;
    return options;
}

void write(const Object& mesh, const Format& format, const std::string& path)
{
    OutputFile output(path, true);
    output.skipSync();
    writeMesh(mesh, format, output);
    output.commit();
}

// Allocates nothing, so that a call that writes fails before the file is there or not at all.
std::uint64_t hashOfFile(const std::string& path)
{
    Hash hash;
    unsigned char bytes[4096];
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    for (ssize_t count = 0; (count = ::read(file, bytes, sizeof bytes)) > 0;)
        hash.addBytes(bytes, static_cast<std::size_t>(count));
    ::close(file);
    return hash.value();
}

}  // namespace

std::vector<Call> operationCalls(uint resolution)
{
    const Ptr<Object> mesh = makeDemoMesh(resolution);
    return {
        {"makeDemoMesh", [resolution] { return hashOfObject(*makeDemoMesh(resolution)); }},
        {"validateMesh", [mesh] { return hashOfProblems(validateMesh(*mesh).problems); }},
        {"edgeWarnings", [mesh] { return hashOfProblems(edgeWarnings(*mesh)); }},
        {"shapeOf",
         [mesh] {
             const MeshShape shape = shapeOf(*mesh);
             return hashOf(shape.edges, shape.boundaryEdges, shape.eulerCharacteristic);
         }},
        {"areaOf", [mesh] { return hashOf(areaOf(*mesh)); }},
        {"triangulate", [mesh] { return hashOfResult(triangulate(*mesh)); }},
        {"triangulate, concave faces split",
         [mesh] { return hashOfResult(triangulate(*mesh, {}, Concave::Split)); }},
        {"makeQuads", [mesh] { return hashOfResult(makeQuads(*mesh, creasedQuads())); }},
        {"sample by distance", [mesh] { return hashOfResult(sample(*mesh, samplesOf(0.1f, 0))); }},
        {"sample by count", [mesh] { return hashOfResult(sample(*mesh, samplesOf(0, 200))); }},
        {"touchedCells, makeCubes",
         [mesh] { return hashOfObject(*makeCubes(touchedCells(*mesh, 0.25), 0.25)); }},
        {"makeTriangleTables", [mesh] { return hashOfArrays(makeTriangleTables(*mesh).arrays()); }},
        {"makePage",
         [mesh] {
             return hashOf(makePage({{"demo", mesh}}));
         }},
    };
}

std::vector<Call> fileCalls(uint resolution, const std::string& folder)
{
    const Ptr<Object> mesh = makeDemoMesh(resolution);
    std::vector<Call> calls;
    for (const Format* const format : formats()) {
        if (!format->writesMeshes)
            continue;
        const std::string name(format->name), path = folder + "/" + name;
        calls.push_back({"write " + name, [=] {
                             write(*mesh, *format, path);
                             return hashOfFile(path);
                         }});
        if (!format->readsMeshes)
            continue;
        const std::string source = folder + "/read-" + name + std::string(format->ending);
        write(*mesh, *format, source);
        calls.push_back(
            {"read " + name, [source] { return hashOfObject(*readMesh(source).mesh); }});
    }
    return calls;
}

std::vector<Call> allCalls(uint resolution, const std::string& folder)
{
    std::vector<Call> calls = kernelCalls(resolution);
    for (const auto& more : {operationCalls(resolution), fileCalls(resolution, folder)})
        calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

}  // namespace Trials
