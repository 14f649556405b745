#include "peers/SamplingRows.h"
#include "peers/VtkInputs.h"

#include <vtkPointData.h>
#include <vtkPoissonDiskSampler.h>

namespace Bench {
namespace {

Other vtkSampler(const SamplingJob& job, Samples& left)
{
    const auto cloud = vtkSmartPointer<vtkPolyData>::New();
    const vtkNew<vtkPoints> points;
    points->SetData(vtkVectors(uniformCloud(job.surface, job.candidates)));
    cloud->SetPoints(points);
    // Without normals the sampler of VTK 9.1 crashes.
    cloud->GetPointData()->SetNormals(vtkVectors(Samples(job.candidates)));
    const auto filter = std::make_shared<vtkSmartPointer<vtkPoissonDiskSampler>>();
    const Contender contender{[=] { (*filter)->Update(); },
                              [=, distance = job.distance] {
                                  *filter = vtkSmartPointer<vtkPoissonDiskSampler>::New();
                                  (*filter)->SetRadius(distance);
                                  (*filter)->SetInputData(cloud);
                              },
                              [=, &left] {
                                  vtkPoints* const kept = (*filter)->GetOutput()->GetPoints();
                                  left =
                                      Samples(static_cast<std::size_t>(kept->GetNumberOfPoints()));
                                  for (std::size_t i = 0; i < left.size(); ++i) {
                                      double p[3];
                                      kept->GetPoint(static_cast<vtkIdType>(i), p);
                                      left[i] = {static_cast<float>(p[0]), static_cast<float>(p[1]),
                                                 static_cast<float>(p[2])};
                                  }
                                  *filter = nullptr;
                              }};
    return {"VTK vtkPoissonDiskSampler", contender,
            "prunes a prepared cloud of as many candidates and knows no triangles"};
}

const RowsOfLibrary rows([] { addSamplingRows("VTK vtkPoissonDiskSampler", 500000, vtkSampler); });

}  // namespace
}  // namespace Bench
