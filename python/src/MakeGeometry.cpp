#include "Geometry.h"
#include "Module.h"
#include "Work.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Arrays.h>

namespace TessaryPython {
namespace {

using namespace Korvane::Geometry;
using Korvane::Math::float3;
using TessaryMesh::Faces;
using TessaryMesh::View;
using Trust = Geometry::Trust;

template <class T>
py::array arrayOf(const Geometry& geometry, const Pelon::String& name)
{
    const ArrayPtr<T> array = dataArray<T>(*geometry.object(), name);
    return toNumpy<T>(array ? array : Pelon::makeMutable<Pelon::Array<T>>());
}

bool isChangeableOrNone(const py::object& array)
{
    return !array.is_none() && isChangeable(py::cast<py::array>(array));
}

// Faces by offsets, or all of one size.
Geometry makeMesh(const py::array& points, const py::array& corners, const py::object& offsets,
                  unsigned size, bool check, unsigned threads)
{
    const auto positions = borrow<float3>(points, "points");
    const auto faceVertex = borrow<uint>(corners, "corners");
    const auto faceOffset =
        offsets.is_none() ? nullptr : borrow<uint>(py::cast<py::array>(offsets), "offsets");
    const bool isShared =
        isChangeable(points) || isChangeable(corners) || isChangeableOrNone(offsets);
    const auto checks = check ? TessaryMesh::Checks::All : TessaryMesh::Checks::None;
    auto mesh = compute({threads, py::none()}, faceVertex->size() + positions->size(), [=](Stage&) {
        const Faces faces =
            faceOffset ? Faces::fromOffsets(View<uint>(faceOffset)) : Faces::ofSize(size);
        return TessaryMesh::makeMesh(View<float3>(positions), View<uint>(faceVertex), faces,
                                     checks);
    });
    const Trust checked = check ? Trust::Checked : Trust::Unchecked;
    return {std::move(mesh), isShared ? Trust::Changeable : checked};
}

Geometry makeCloud(const py::array& points)
{
    const auto cloud = Korvane::createObject();
    populatePointCloud(borrow<float3>(points, "points"), *cloud);
    return {cloud, Trust::Checked};
}

}  // namespace

void defineGeometry(py::module_& module)
{
    py::class_<Geometry>(module, "Geometry")
        .def_property_readonly("has_faces", &Geometry::hasFaces)
        .def_property_readonly("point_count", &Geometry::pointCount)
        .def_property_readonly("corner_count", &Geometry::cornerCount)
        .def_property_readonly(
            "face_count",
            [](const Geometry& self) { return getElementCount(*self.object(), sFaceComp); })
        .def_property_readonly(
            "points", [](const Geometry& self) { return arrayOf<float3>(self, sPointPosition); })
        .def_property_readonly(
            "corners", [](const Geometry& self) { return arrayOf<uint>(self, sFaceVertex); })
        .def_property_readonly(
            "offsets", [](const Geometry& self) { return arrayOf<uint>(self, sFaceOffset); });
    module.def("make_mesh", &makeMesh, py::arg("points"), py::arg("corners"), py::arg("offsets"),
               py::arg("size"), py::arg("check"), py::arg("threads"));
    module.def("make_cloud", &makeCloud, py::arg("points"));
}

}  // namespace TessaryPython
