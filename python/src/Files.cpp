#include "Geometry.h"
#include "Module.h"
#include "Work.h"

#include <TessaryMesh/Check.h>
#include <TessaryMesh/Files.h>

#include <filesystem>

namespace TessaryPython {
namespace {

using TessaryMesh::Format;

py::list toPython(const std::vector<std::string>& lines)
{
    py::list list;
    for (const std::string& line : lines)
        list.append(TessaryPython::toPython(Pelon::String(line)));
    return list;
}

// Half an element for each byte of a file; what is none may keep one waiting.
std::size_t readingEffort(const std::string& path)
{
    std::error_code error;
    const bool isFile = path != "-" && std::filesystem::is_regular_file(path, error);
    const auto size = isFile ? std::filesystem::file_size(path, error) : 0;
    return isFile && !error ? static_cast<std::size_t>(size / 2) : kUnknownEffort;
}

// geometry, name of the format, warnings
py::tuple read(const py::bytes& path, bool check, unsigned threads, const py::object& progress)
{
    TessaryMesh::MeshRead made = compute(
        {threads, progress}, readingEffort(path), [name = std::string(path), check](Stage&) {
            return check ? TessaryMesh::readMesh(name) : TessaryMesh::readMeshUnchecked(name);
        });
    const auto trust = check ? Geometry::Trust::Checked : Geometry::Trust::Unchecked;
    return py::make_tuple(Geometry(made.mesh, trust), std::string(made.format->name),
                          toPython(made.warnings));
}

const Format& formatFor(const std::string& path, const std::string& name)
{
    const Format* const format =
        name.empty() ? TessaryMesh::formatOfName(path) : TessaryMesh::findFormat(name);
    if (format)
        return *format;
    if (!name.empty())
        throw TessaryMesh::ArgumentError("format", "there is no format \"" + name + "\"");
    throw TessaryMesh::ArgumentError("format",
                                     path + ": the ending does not tell a format; give it by name");
}

py::list write(const Geometry& geometry, const py::bytes& path, const std::string& format,
               bool overwrite, unsigned threads, const py::object& progress)
{
    const std::string name = path;
    const Format& chosen = formatFor(name, format);
    return toPython(compute({threads, progress}, kUnknownEffort,
                            [object = geometry.object(), name, &chosen, overwrite](Stage& stage) {
                                stage.next(99);
                                TessaryMesh::OutputFile output(name, overwrite);
                                auto warnings = TessaryMesh::writeMesh(*object, chosen, output);
                                stage.next(100);
                                TessaryMesh::throwIfCancelled();
                                output.commit();
                                return warnings;
                            }));
}

py::list formats()
{
    py::list list;
    for (const Format* const format : TessaryMesh::formats())
        list.append(py::make_tuple(std::string(format->name), std::string(format->title),
                                   std::string(format->ending), format->readsMeshes,
                                   format->writesMeshes, format->writesClouds));
    return list;
}

}  // namespace

void defineFiles(py::module_& module)
{
    module.def("read", &read, py::arg("path"), py::arg("check"), py::arg("threads"),
               py::arg("progress"));
    module.def("write", &write, py::arg("geometry"), py::arg("path"), py::arg("format"),
               py::arg("overwrite"), py::arg("threads"), py::arg("progress"));
    module.def("formats", &formats);
}

}  // namespace TessaryPython
