#include "peers/Open3DInputs.h"
#include "peers/SamplingRows.h"

#include <open3d/geometry/PointCloud.h>

namespace Bench {
namespace {

Other open3dSampler(const SamplingJob& job, Samples& left)
{
    const auto mesh = std::make_shared<open3d::geometry::TriangleMesh>(
        open3dMesh(job.surface.points, job.surface.faceVertex));
    const auto cloud = std::make_shared<std::shared_ptr<open3d::geometry::PointCloud>>();
    const Contender contender{
        [=, samples = job.samples] { *cloud = mesh->SamplePointsPoissonDisk(samples); }, nullptr,
        [=, &left] {
            const auto& points = (*cloud)->points_;
            left = Samples(points.size());
            for (std::size_t i = 0; i < points.size(); ++i)
                left[i] = {static_cast<float>(points[i].x()), static_cast<float>(points[i].y()),
                           static_cast<float>(points[i].z())};
            *cloud = nullptr;
        }};
    return {"Open3D SamplePointsPoissonDisk", contender,
            "eliminates the most crowded of 5 times as many candidates until this number is left "
            "and is given no distance"};
}

const RowsOfLibrary rows([] {
    addSamplingRows("Open3D SamplePointsPoissonDisk", 20000, open3dSampler);
});

}  // namespace
}  // namespace Bench
