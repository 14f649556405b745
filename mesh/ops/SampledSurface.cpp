#include <TessaryMesh/Operations.h>

#include <Pelon/RuntimeServices.h>
#include <Tessary/Primitives.h>
#include <Tessary/Sampling.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/MachineMemory.h"
#include "base/MeshArrays.h"
#include "base/MessageText.h"
#include "base/Vectors.h"
#include "ops/CountSearch.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_reduce.h>
#include <algorithm>
#include <cmath>
#include <new>

namespace TessaryMesh {
namespace {

using namespace Korvane::Geometry;

constexpr double kPi = 3.14159265358979323846;
constexpr double kCandidateBytes = 120;                      // the kernel's promise
constexpr double kAlwaysFree = 1e7;                          // bytes; to ask the system takes 10 us
constexpr double kMostCandidates = 4294967296 * (1 - 1e-4);  // its area is in single precision
constexpr double kLeastSquarable = 2e-19;  // squares of less vanish in single precision
constexpr double kMostCells = 2147483000;  // from the origin along an axis
constexpr double kFarthest = 1.7e38;       // so that differences are finite
constexpr double kMostArea = 3e38, kLeastMeanArea = 1e-37;
constexpr double kCandidatesPerSample = 11.25;  // measured on smooth surfaces

[[noreturn]] void reject(const char* code, const char* message, const char* advice)
{
    throw InvalidMesh(Problem{Problem::Severity::Error, code, message, 1, {}, advice});
}

// Rounded up to few digits, so that what is advised does fit.
std::string textAbove(double number)
{
    const double digit = std::pow(10, std::floor(std::log10(number)) - 2);
    return measureText((std::floor(number / digit) + 1) * digit);
}

// What is wrong with so many candidates on this machine; empty where nothing is.
std::string lackOfMemory(double candidates)
{
    const double bytes = candidates * kCandidateBytes;
    if (bytes < kAlwaysFree)
        return "";
    const auto memory = static_cast<double>(machineMemory());
    return bytes <= memory ? ""
                           : " needs about " + memoryText(bytes) + " of memory, and there are " +
                                 memoryText(memory);
}

MutablePtr<Object> trianglesOf(const Object& mesh)
{
    throwIfCancelled();
    const MeshArrays arrays(mesh);
    Array<uint> corners = fanTriangles(*arrays.faceOffset, *arrays.faceVertex);
    if (corners.empty())
        reject("no-faces", "there are no faces, so there is no surface to sample",
               "sample a mesh that has faces");
    Array<uint> offsets(corners.size() / 3 + 1);
    for (std::size_t t = 0; t < offsets.size(); ++t)
        offsets[t] = static_cast<uint>(3 * t);
    return makeMesh(*arrays.points, std::move(offsets), std::move(corners));
}

struct Measures {
    double area = 0;
    double farthest = 0;
};

Measures measure(const Object& triangles)
{
    const Array<float3>& points = *dataArray<float3>(triangles, sPointPosition);
    const Array<uint>& corners = *dataArray<uint>(triangles, sFaceVertex);
    using Range = tbb::blocked_range<std::size_t>;
    return tbb::parallel_deterministic_reduce(
        Range(0, corners.size() / 3, 4096), Measures(),
        [&](const Range& range, Measures m) {
            for (std::size_t t = range.begin(); t < range.end(); ++t) {
                const float3* p[3];
                for (std::size_t k = 0; k < 3; ++k) {
                    p[k] = &points[corners[3 * t + k]];
                    for (const float x : {p[k]->x, p[k]->y, p[k]->z})
                        m.farthest = std::max(m.farthest, std::abs(double{x}));
                }
                m.area += 0.5 * length(cross(difference(*p[1], *p[0]), difference(*p[2], *p[0])));
            }
            return m;
        },
        [](const Measures& a, const Measures& b) {
            return Measures{a.area + b.area, std::max(a.farthest, b.farthest)};
        });
}

}  // namespace

SampledSurface::SampledSurface(const Object& mesh)
    : m_triangles(guarded([&] { return trianglesOf(mesh); }))
{
    const Measures measures = guarded([&] { return measure(*m_triangles); });
    m_area = measures.area;
    m_farthest = measures.farthest;
    if (!std::isfinite(m_area) || !std::isfinite(m_farthest))
        reject("point-not-finite", "a face has a point that is not finite",
               "give every point three finite coordinates");
    if (m_area > kMostArea || m_farthest > kFarthest)
        reject("area-overflow", "the faces are larger than single precision holds",
               "scale the mesh down");
    if (m_area == 0)
        reject("no-area", "no face has an area, so there is no surface to sample",
               "look for points that coincide or lie on one line");
    if (m_area / getElementCount(*m_triangles, sFaceComp) < kLeastMeanArea)
        reject("area-underflow", "the faces are smaller than single precision holds",
               "scale the mesh up");
}

float SampledSurface::boundingRadius() const
{
    const Array<float3>& points = *dataArray<float3>(*m_triangles, sPointPosition);
    return guarded([&] { return Tessary::computeBoundingSphere(points).getRadius(); });
}

// Five for each disk of half the distance.
double SampledSurface::candidates(double distance) const
{
    return 20 / kPi * m_area / (distance * distance);
}

float SampledSurface::leastDistance() const
{
    const double most =
        std::min(kMostCandidates, static_cast<double>(machineMemory()) / kCandidateBytes);
    const double least =
        std::max({std::sqrt(candidates(1) / most), kLeastSquarable, m_farthest / kMostCells});
    return std::nextafter(static_cast<float>(least), INFINITY);
}

double SampledSurface::roundingShare(float distance) const
{
    return m_farthest * 0x1p-24 / distance;
}

void SampledSurface::checkDistance(float distance) const
{
    if (!(distance > 0) || !std::isfinite(distance))
        throw ArgumentError("distance", "the distance is not a number above zero that is finite");
    const std::string advice = " (take a distance from " + textAbove(leastDistance()) + " on";
    const std::string asked = "the distance " + measureText(distance);
    if (distance < kLeastSquarable)
        throw ArgumentError("distance", asked + " is too small for single precision" + advice +
                                            ", or scale the mesh up)");
    const double count = candidates(distance);
    if (count > kMostCandidates)
        throw ArgumentError("distance", asked + " asks for " + measureText(count) +
                                            " candidates, which 32 bits cannot number" + advice +
                                            ")");
    if (m_farthest / distance > kMostCells)
        throw ArgumentError(
            "distance", asked + " is too small for a mesh that reaches as far from the origin as " +
                            measureText(m_farthest) + advice + ", or move the mesh to the origin)");
    if (const std::string lack = lackOfMemory(count); !lack.empty())
        throw OutOfMemory("", asked + lack + advice + ")", count * kCandidateBytes);
}

SurfaceSamples SampledSurface::sample(float distance, uint seed) const
{
    checkDistance(distance);
    throwIfCancelled();
    std::string trouble;
    const Pelon::RuntimeServices services(
        [&trouble](Pelon::RuntimeMessageCategory, Pelon::StringView line) {
            trouble.append(line.data(), line.size());
        });
    Object out;
    try {
        guarded(
            [&] { Tessary::poissonSampleTriMesh(distance, seed, *m_triangles, out, &services); });
    } catch (const OutOfMemory&) {
        throw OutOfMemory("", "the distance " + measureText(distance) +
                                  " needs more memory than is free (take a larger one, or fewer "
                                  "samples)");
    }
    if (!trouble.empty())
        throw Error(trouble);
    return {dataArray<float3>(out, sPointPosition), dataArray<float>(out, "weight"),
            dataArray<uint>(out, "face_id"), distance};
}

double SampledSurface::distanceForCount(std::uint64_t count) const
{
    const double needed = kCandidatesPerSample * (static_cast<double>(count) + 1);
    const double distance = std::sqrt(candidates(1) / needed), least = leastDistance();
    if (distance >= least)
        return distance;
    const std::string asked = "finding " + std::to_string(count) + " samples";
    const std::string lack = lackOfMemory(needed);
    const double most = candidates(least) / kCandidatesPerSample;
    const std::string advice =
        " (ask for " + std::to_string(static_cast<std::uint64_t>(most)) + " at most)";
    if (needed > kMostCandidates)
        throw ArgumentError("count",
                            asked + " takes more candidates than 32 bits can number" + advice);
    if (!lack.empty())
        throw OutOfMemory("", asked + lack + advice, needed * kCandidateBytes);
    checkDistance(static_cast<float>(distance));
    return distance;
}

SurfaceSamples SampledSurface::sampleCount(std::uint64_t count, uint seed) const
{
    if (count == 0)
        throw ArgumentError("count", "the number of samples is 0; ask for one at least");
    const double guess = distanceForCount(count);
    SurfaceSamples best;
    searchForCount(count, guess, leastDistance(), [&](double distance) {
        SurfaceSamples found = sample(static_cast<float>(distance), seed);
        const std::uint64_t n = found.count();
        const auto miss = [count](std::uint64_t k) { return k > count ? k - count : count - k; };
        if (!best.positions || miss(n) < miss(best.count()))
            best = std::move(found);
        return n;
    });
    return best;
}

}  // namespace TessaryMesh
