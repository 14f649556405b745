// A small node graph: a file is read and triangulated; the triangles become quads, and samples, which are
// moved apart. Run it beside crate.obj, or with the name of another mesh file.
#include "graph.h"
#include "operators.h"

#include <Korvane/Geometry.h>
#include <Pelon/Job.h>

#include <iostream>

using namespace Korvane;
using Pelon::RuntimeMessageCategory;
using Pelon::StringView;

namespace {

// Where messages of operators and kernels go, on the thread that says them. Some end with their line.
void print(RuntimeMessageCategory category, StringView text)
{
    const auto line = text.view().substr(0, text.view().find('\n'));
    const bool isInfo = category == RuntimeMessageCategory::Info;
    std::cout << (isInfo                                      ? "  "
                  : category == RuntimeMessageCategory::Error ? "  error: "
                                                              : "  warning: ")
              << line << '\n';
}

// The values of a property, for comparing places in memory.
const void* valuesOf(const Shape& shape, const char* name)
{
    return Geometry::dataArray<Math::float2>(*shape, name).get();
}

void shareAndCopy(const std::string& path)
{
    Graph graph{Log(print)};
    const Graph::Node mesh = graph.add(readFile(path));
    const Graph::Node triangles = graph.add(triangulate(), {mesh});
    const Graph::Node cut = graph.add(quads(30), {triangles});
    const Graph::Node samples = graph.add(sample(0.15f, 7), {triangles});
    const Graph::Node apart = graph.add(separate(0.1f), {samples});

    std::cout << "all results but the samples are wanted:\n";
    const std::vector<Shape> shapes = graph.evaluate({mesh, triangles, cut, apart});
    std::cout << "  mesh and triangles share their UVs: "
              << (valuesOf(shapes[0], "texcoord") == valuesOf(shapes[1], "texcoord") ? "yes" : "no")
              << '\n';

    std::cout << "the samples are wanted, too:\n";
    graph.evaluate({samples, apart});
}

void cancel(const std::string& path)
{
    Pelon::Job job;
    // Somebody presses Stop as soon as there are triangles. cancel() may come from any thread.
    Graph graph{Log([&job](RuntimeMessageCategory category, StringView text) {
        print(category, text);
        if (text.view().find("triangulate") == 0)
            job.cancel();
    })};
    const Graph::Node mesh = graph.add(readFile(path));
    const Graph::Node cut = graph.add(quads(30), {graph.add(triangulate(), {mesh})});

    std::cout << "a job that is cancelled:\n";
    try {
        const Pelon::JobScope scope(job);  // what this thread does in here belongs to the job
        graph.evaluate({cut});
    } catch (const std::exception& error) {
        std::cout << "  stopped: " << error.what() << '\n';
    }
    std::cout << "and the same graph without it:\n";
    graph.evaluate({cut});
}

void fail(const std::string& path)
{
    Graph graph{Log(print)};
    const Graph::Node mesh = graph.add(readFile(path));
    const Graph::Node samples = graph.add(sample(0, 7), {graph.add(triangulate(), {mesh})});
    std::cout << "a distance of 0:\n";
    const Shape none = graph.evaluate({samples})[0];
    std::cout << "  " << (none ? "samples" : "no samples") << '\n';
}

}  // namespace

int main(int argc, char** argv)
try {
    const std::string path = argc > 1 ? argv[1] : "crate.obj";
    shareAndCopy(path);
    cancel(path);
    fail(path);
} catch (const std::exception& error) {
    std::cerr << "operators: " << error.what() << '\n';
    return 1;
}
