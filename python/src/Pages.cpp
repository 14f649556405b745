#include "Geometry.h"
#include "Module.h"
#include "Work.h"

#include <TessaryMesh/Files.h>
#include <TessaryMesh/Page.h>

#include <pybind11/stl.h>

#include <string>
#include <utility>
#include <vector>

namespace TessaryPython {
namespace {

using TessaryMesh::PageModel;
using TessaryMesh::PageOptions;
using Models = std::vector<std::pair<std::string, const Geometry*>>;

std::vector<PageModel> toModels(const Models& models)
{
    std::vector<PageModel> made;
    for (const auto& [name, geometry] : models)
        made.push_back({name, geometry->object()});
    return made;
}

// ASCII, so that it can stand in text of any encoding.
std::string makePage(const Models& models, bool quantise, unsigned threads,
                     const py::object& progress)
{
    PageOptions options;
    options.quantise = quantise;
    options.ascii = true;
    return compute({threads, progress}, kUnknownEffort,
                   [models = toModels(models), options](Stage&) {
                       return TessaryMesh::makePage(models, options);
                   });
}

void writePage(const Models& models, const py::bytes& path, bool quantise, bool overwrite,
               unsigned threads, const py::object& progress)
{
    PageOptions options;
    options.quantise = quantise;
    compute(
        {threads, progress}, kUnknownEffort,
        [models = toModels(models), name = std::string(path), options, overwrite](Stage& stage) {
            stage.next(99);
            TessaryMesh::OutputFile output(name, overwrite);
            TessaryMesh::writePage(models, output, options);
            stage.next(100);
            TessaryMesh::throwIfCancelled();
            output.commit();
            return true;
        });
}

}  // namespace

void definePages(py::module_& module)
{
    using py::arg;
    module.def("make_page", &makePage, arg("models"), arg("quantise"), arg("threads"),
               arg("progress"));
    module.def("write_page", &writePage, arg("models"), arg("path"), arg("quantise"),
               arg("overwrite"), arg("threads"), arg("progress"));
}

}  // namespace TessaryPython
