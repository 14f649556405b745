#pragma once

#include "support/Inputs.h"

#include <vtkCellArray.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>
#include <vtkTypeInt32Array.h>

#include <algorithm>

namespace Bench {

inline vtkSmartPointer<vtkTypeInt32Array> vtkIndices(const Array<uint>& values)
{
    const auto indices = vtkSmartPointer<vtkTypeInt32Array>::New();
    indices->SetNumberOfValues(static_cast<vtkIdType>(values.size()));
    std::copy(values.begin(), values.end(), indices->GetPointer(0));
    return indices;
}

/// Cells with indices of 32 bits, as ours have.
inline vtkSmartPointer<vtkCellArray> vtkCells(const Array<uint>& faceOffset,
                                              const Array<uint>& faceVertex)
{
    const auto cells = vtkSmartPointer<vtkCellArray>::New();
    cells->SetData(vtkIndices(faceOffset), vtkIndices(faceVertex));
    return cells;
}

inline vtkSmartPointer<vtkFloatArray> vtkVectors(const Array<Korvane::Math::float3>& values)
{
    const auto vectors = vtkSmartPointer<vtkFloatArray>::New();
    vectors->SetNumberOfComponents(3);
    vectors->SetNumberOfTuples(static_cast<vtkIdType>(values.size()));
    std::copy_n(&values.data()->x, 3 * values.size(), vectors->GetPointer(0));
    return vectors;
}

inline vtkSmartPointer<vtkPolyData> vtkMesh(const Array<Korvane::Math::float3>& points,
                                            vtkCellArray* cells)
{
    const auto mesh = vtkSmartPointer<vtkPolyData>::New();
    const vtkNew<vtkPoints> positions;
    positions->SetData(vtkVectors(points));
    mesh->SetPoints(positions);
    mesh->SetPolys(cells);
    return mesh;
}

}  // namespace Bench
