#include <Tessary/Sampling.h>

#include "base/Log.h"
#include "base/ParallelLoop.h"
#include "base/Progress.h"
#include "base/PropertyAccess.h"
#include "properties/OutputProperty.h"
#include "sampling/Phases.h"
#include "sampling/SurfaceSampler.h"
#include "sampling/TriangleGroups.h"

namespace Tessary {
namespace {

struct Samples {
    MutablePtr<Array<float>> weights;  // 3 per sample
    MutablePtr<Array<float3>> positions;
    MutablePtr<Array<uint>> faceIds;
    MutablePtr<Array<uint>> offsetOfFace;  // one more than faces

    Samples(std::size_t count, MutablePtr<Array<uint>> offsets)
        : weights(makeMutable<Array<float>>(3 * count)),
          positions(makeMutable<Array<float3>>(count)),
          faceIds(makeMutable<Array<uint>>(count)),
          offsetOfFace(std::move(offsets))
    {}
};

Samples sample(const TriangleMesh& mesh, float distance, uint seed)
{
    Array<float> weights;
    Array<float3> positions;
    Array<uint> faceIds;
    SurfaceSampler sampler(mesh, weights, positions, faceIds);
    sampler.draw(distance, seed);
    sampler.eliminate(distance);
    const TriangleGroups groups =
        groupByTriangle(faceIds, sampler.isRejected(), mesh.triangleCount);

    const Array<uint>& order = groups.order;
    Samples samples(order.size(), groups.offsets);
    beginPhase(kEliminated, kGathered);
    parallelForEach(static_cast<uint>(order.size()), LoopContext::Bound, [&](uint j) {
        const std::size_t k = order[j];
        for (uint corner = 0; corner < 3; ++corner)
            (*samples.weights)[std::size_t{3} * j + corner] = weights[3 * k + corner];
        (*samples.positions)[j] = positions[k];
        (*samples.faceIds)[j] = faceIds[k];
    });
    return samples;
}

void store(const Samples& samples, Object& out)
{
    const String component = "sample_component";
    Geometry::populatePointCloud(samples.positions, out);
    const MutablePtr<Object> elements = Korvane::createObject();
    Geometry::populateComponentGeoProperty(static_cast<uint>(samples.faceIds->size()), *elements);
    out.storeProperty(String(component), Any(elements));
    attachSharedProperty<float>(component, "weight", samples.weights, 0.0f, out);
    attachSharedProperty<uint>(component, "face_id", samples.faceIds, 0xFFFFFFFF, out);
    attachSharedProperty<uint>(Geometry::sFaceComp, "face_sample_offset", samples.offsetOfFace,
                               0xFFFFFFFF, out);
}

}  // namespace

void poissonSampleTriMesh(float min_distance, unsigned int seed, const Object& mesh, Object& out,
                          const Pelon::RuntimeServices* services)
{
    const auto fail = [services](StringView message) {
        logError(services, message, "poissonSampleTriMesh");
    };
    if (!(min_distance > 0.0f))
        return fail("min_distance must be greater than zero");
    if (Geometry::getElementCount(mesh, Geometry::sPointComp) == 0)
        return;
    const Ptr<Array<float3>> points = getDataArray<float3>(mesh, Geometry::sPointPosition);
    if (!points)
        return fail("Missing vp_ptr");
    const Ptr<Array<uint>> faceVertex = getDataArray<uint>(mesh, Geometry::sFaceVertex);
    if (!faceVertex)
        return fail("Missing tri_vertices_ptr");
    const uint faceCount = Geometry::getElementCount(mesh, Geometry::sFaceComp);
    if (std::uint64_t{3} * faceCount != faceVertex->size())
        return fail("Mesh must only contain triangle faces");
    store(
        sample({points->data(), points->size(), faceVertex->data(), faceCount}, min_distance, seed),
        out);
}

}  // namespace Tessary
