#include "peers/TriangulationRows.h"
#include "peers/VtkInputs.h"

#include <vtkCellData.h>
#include <vtkPointData.h>
#include <vtkTriangleFilter.h>

namespace Bench {
namespace {

vtkSmartPointer<vtkPolyData> meshOf(const Polygons& in)
{
    const auto mesh = vtkMesh(torusPoints(in.pointCount), vtkCells(in.faceOffset, in.faceVertex));
    Array<Korvane::Math::float3> normals(in.pointCount);
    for (uint p = 0; p < in.pointCount; ++p)
        normals[p] = normalOf(p);
    mesh->GetPointData()->SetNormals(vtkVectors(normals));
    Array<uint> ids(in.faceCount());
    for (uint f = 0; f < in.faceCount(); ++f)
        ids[f] = f;
    const auto id = vtkIndices(ids);
    id->SetName("id");
    mesh->GetCellData()->AddArray(id);
    return mesh;
}

TriangleSummary summaryOf(vtkPolyData& mesh)
{
    TriangleSummary summary{static_cast<double>(mesh.GetNumberOfPolys()), 0};
    const auto* const ids = vtkTypeInt32Array::SafeDownCast(mesh.GetCellData()->GetArray("id"));
    for (vtkIdType t = 0; t < ids->GetNumberOfValues(); ++t)
        summary.sumOfIds += ids->GetValue(t);
    return summary;
}

void fill(Row& row, const Polygons& in, const char* peer)
{
    const auto mesh = meshOf(in);
    vtkSmartPointer<vtkTriangleFilter> filter;
    TriangleSummary others;
    const Contender other{[&] { filter->Update(); },
                          [&] {
                              filter = vtkSmartPointer<vtkTriangleFilter>::New();
                              filter->PassVertsOff();
                              filter->PassLinesOff();
                              filter->SetInputData(mesh);
                          },
                          [&] {
                              others = summaryOf(*filter->GetOutput());
                              filter = nullptr;
                          }};
    compareTriangleMeshes(
        row, in, CornerValues::Without,
        {peer, other, "chooses diagonals by positions and shares the points on one thread"},
        others);
}

void addRows()
{
    const char* const peer = "VTK vtkTriangleFilter";
    addPolygonRows(
        "triangulatePolyMesh", peer, [=](Row& row, const Polygons& in) { fill(row, in, peer); },
        " with normal and id");
}

const RowsOfLibrary rows(addRows);

}  // namespace
}  // namespace Bench
