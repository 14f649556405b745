#include "Errors.h"
#include "Geometry.h"
#include "Module.h"
#include "Work.h"

#include <TessaryMesh/Check.h>

#include <iterator>
#include <utility>

namespace TessaryPython {
namespace {

using TessaryMesh::MeshShape;
using TessaryMesh::Problem;

std::size_t effortOf(const Geometry& geometry)
{
    return 10 * (geometry.pointCount() + geometry.cornerCount());
}

void append(std::vector<Problem>& problems, std::vector<Problem> more)
{
    std::move(more.begin(), more.end(), std::back_inserter(problems));
}

py::list validate(const Geometry& geometry, unsigned threads, const py::object& progress)
{
    return problemsOf(compute(
        {threads, progress}, effortOf(geometry), [object = geometry.object()](Stage& stage) {
            stage.next(30);
            auto report = TessaryMesh::validateMesh(*object);
            stage.next(90);
            if (!report.hasErrors())
                append(report.problems, TessaryMesh::edgeWarnings(*object));
            stage.next(100);
            if (!report.hasErrors())
                append(report.problems, TessaryMesh::concaveFaces(*object).problems());
            return std::move(report.problems);
        }));
}

// Of a mesh without errors.
py::list concaveFaces(const Geometry& geometry)
{
    return problemsOf(compute({}, effortOf(geometry), [object = geometry.object()](Stage&) {
        return TessaryMesh::concaveFaces(*object).problems();
    }));
}

py::dict toPython(const MeshShape& shape, double area)
{
    py::dict facts;
    facts["edges"] = shape.edges;
    facts["boundary_edges"] = shape.boundaryEdges;
    facts["non_manifold_edges"] = shape.nonManifold.count;
    facts["same_direction_edges"] = shape.sameDirection.count;
    facts["non_manifold_points"] = shape.nonManifoldPoints;
    facts["unused_points"] = shape.unusedPoints;
    facts["components"] = shape.components;
    facts["euler_characteristic"] = shape.eulerCharacteristic;
    facts["least_valence"] = shape.least;
    facts["most_valence"] = shape.most;
    facts["closed"] = shape.isClosed;
    facts["genus"] = shape.genus ? py::object(py::int_(*shape.genus)) : py::none();
    facts["area"] = area;
    return facts;
}

py::dict info(const Geometry& geometry, unsigned threads, const py::object& progress)
{
    const auto facts = compute(
        {threads, progress}, effortOf(geometry), [geometry = Geometry(geometry)](Stage& stage) {
            stage.next(20);
            geometry.requireValid();
            stage.next(90);
            MeshShape shape = TessaryMesh::shapeOf(*geometry.object());
            stage.next(100);
            return std::make_pair(std::move(shape), TessaryMesh::areaOf(*geometry.object()));
        });
    return toPython(facts.first, facts.second);
}

}  // namespace

void defineChecks(py::module_& module)
{
    module.def("validate", &validate, py::arg("geometry"), py::arg("threads"), py::arg("progress"));
    module.def("concave_faces", &concaveFaces, py::arg("geometry"));
    module.def("info", &info, py::arg("geometry"), py::arg("threads"), py::arg("progress"));
}

}  // namespace TessaryPython
