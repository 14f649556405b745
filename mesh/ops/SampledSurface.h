#pragma once

#include "base/Host.h"

#include <cstdint>
#include <string>

namespace TessaryMesh {

/// Points on the fan triangles of a mesh, no two closer than the distance, grouped by triangle.
struct SurfaceSamples {
    Ptr<Array<float3>> positions;
    Ptr<Array<float>> weights;     ///< 3 for each: of the triangle's corners
    Ptr<Array<uint>> triangleIds;  ///< of the triangle that holds each
    float distance = 0;

    std::size_t count() const { return positions ? positions->size() : 0; }
};

/// The surface of a mesh without errors (see Validate.h), ready for poissonSampleTriMesh.
///
/// What the kernel would answer with nothing, with nonsense or by exhausting the machine is refused
/// here in words that say what to do.
class SampledSurface {
public:
    /// `name` stands for the mesh in messages. Throws InvalidMesh where there are no faces, no area,
    /// or coordinates so large or so small that single precision does not hold the area.
    SampledSurface(const Object& mesh, std::string name);

    double area() const { return m_area; }

    /// Of the smallest sphere around all points.
    float boundingRadius() const;

    /// The smallest distance that this machine can sample with. It grows with the area: candidates
    /// are numbered in 32 bits and take memory.
    float leastDistance() const;

    /// The share of the distance that rounding of the coordinates may amount to.
    double roundingShare(float distance) const;

    /// Throws std::invalid_argument for a distance that is no number above zero, too small for the
    /// area, or too small for coordinates so far from the origin; FileError where only memory stands
    /// in the way; std::runtime_error when the caller's job is cancelled.
    SurfaceSamples sample(float distance, uint seed) const;

    /// Looks for the distance that yields `count` samples (at least 1) until it is met within 2 %,
    /// or the search ends; returns the nearest that was found. Throws as sample() does.
    SurfaceSamples sampleCount(std::uint64_t count, uint seed) const;

private:
    double candidates(double distance) const;
    void checkDistance(float distance) const;
    double distanceForCount(std::uint64_t count) const;  // about

    std::string m_name;
    MutablePtr<Object> m_triangles;
    double m_area = 0;
    double m_farthest = 0;  // coordinate of a corner from the origin
};

}  // namespace TessaryMesh
