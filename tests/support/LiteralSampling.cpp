#include "LiteralSampling.h"

#include <tbb/blocked_range.h>
#include <tbb/cache_aligned_allocator.h>
#include <tbb/concurrent_unordered_map.h>
#include <tbb/concurrent_vector.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_reduce.h>
#include <tbb/parallel_sort.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

namespace LiteralSampling {
namespace {

using Range = tbb::blocked_range<std::size_t>;

template <class Body>
void parallelFor(std::size_t count, const Body& body)
{
    tbb::parallel_for(Range(0, count, 1), [&body](const Range& range) {
        for (std::size_t i = range.begin(); i < range.end(); ++i)
            body(i);
    });
}

// Turns (a, b) into (r, 0) and a partner pair with it.
struct Rotation {
    float c, s;

    Rotation(float a, float b)
    {
        const float signA = std::copysign(1.0f, a), signB = std::copysign(1.0f, b);
        if (std::fabs(b) > std::fabs(a)) {
            const float t = a / std::fabs(b);
            const float inverse = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
            c = t * inverse;
            s = -signB * inverse;
        } else if (std::fabs(a) > std::fabs(b)) {
            const float t = b / std::fabs(a);
            const float inverse = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
            c = signA * inverse;
            s = -t * inverse;
        } else {
            c = signA / std::sqrt(2.0f);
            s = -signB / std::sqrt(2.0f);
        }
    }

    void turnPair(float& a, float& b) const
    {
        a = a * c - s * b;
        b = 0.0f;
    }

    void turnPartner(float& x, float& y) const
    {
        const float oldX = x;
        x = x * c - y * s;
        y = y * c + oldX * s;
    }
};

float triangleArea(const float3& p0, const float3& p1, const float3& p2)
{
    float3 e1{p1.x - p0.x, p1.y - p0.y, p1.z - p0.z};
    float3 e2{p2.x - p0.x, p2.y - p0.y, p2.z - p0.z};
    const Rotation first(e1.y, e1.z);
    first.turnPair(e1.y, e1.z);
    first.turnPartner(e2.y, e2.z);
    const Rotation second(e1.x, e1.y);
    second.turnPair(e1.x, e1.y);
    second.turnPartner(e2.x, e2.y);
    Rotation(e2.y, e2.z).turnPair(e2.y, e2.z);
    return std::fabs((e1.x * 0.5f) * e2.y);
}

void moveOrKeep(uint slot, float q, std::vector<uint>& small, std::vector<uint>& large)
{
    (1.0f > q ? small : large).push_back(slot);
}

using Cell = std::array<std::int32_t, 3>;

struct HashOfCell {
    std::size_t operator()(const Cell& cell) const
    {
        constexpr std::uint64_t k = 0x9E3779B97F4A7C15u;
        const auto extended = [](std::int32_t a) { return static_cast<std::uint64_t>(a); };
        return (extended(cell[0]) * k) ^ (((extended(cell[2]) * k) ^ (extended(cell[1]) * k)) * k);
    }
};

struct Point {
    std::uint64_t id;
    float3 local;
    Cell cell;
    uint tag;

    bool operator<(const Point& o) const { return cell == o.cell ? id < o.id : cell < o.cell; }
};

std::int32_t cellCoordinate(float scaled)
{
    const float low = std::floor(scaled + 0.5f);
    return low >= -0x1p31f && low < 0x1p31f ? static_cast<std::int32_t>(low)
                                            : std::numeric_limits<std::int32_t>::min();
}

Point binned(std::uint64_t id, const float3& p, float inverseSize)
{
    const float x = inverseSize * p.x, y = inverseSize * p.y, z = inverseSize * p.z;
    const Cell cell{cellCoordinate(x), cellCoordinate(y), cellCoordinate(z)};
    return {id,
            {x - static_cast<float>(cell[0]), y - static_cast<float>(cell[1]),
             z - static_cast<float>(cell[2])},
            cell,
            0x8000};
}

Cell neighbourOf(const Cell& cell, int dx, int dy, int dz)
{
    const auto add = [](std::int32_t a, int b) {
        return static_cast<std::int32_t>(static_cast<uint>(a) + static_cast<uint>(b));
    };
    return {add(cell[0], dx), add(cell[1], dy), add(cell[2], dz)};
}

class Bins {
public:
    Bins(const Array<float3>& positions, float inverseSize)
    {
        m_points.resize(positions.size());
        parallelFor(positions.size(),
                    [&](std::size_t i) { m_points[i] = binned(i, positions[i], inverseSize); });
        tbb::parallel_sort(m_points.begin(), m_points.end());
        listCells();
        parallelFor(m_cells.size(), [this](std::size_t b) {
            m_binOf.insert(std::make_pair(m_cells[b], static_cast<uint>(b)));
        });
    }

    /// Calls found(e) for every point e of the 27 cells around `centre` within a cell size of it.
    template <class Found>
    void visitNear(const Point& centre, const Found& found) const
    {
        for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy)
                for (int dz = -1; dz <= 1; ++dz) {
                    const auto bin = m_binOf.find(neighbourOf(centre.cell, dx, dy, dz));
                    if (bin != m_binOf.end())
                        visitBin(bin->second, centre, dx, dy, dz, found);
                }
    }

private:
    // One entry per distinct cell; points in front that have the first `previous` open no bin.
    void listCells()
    {
        constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
        Cell previous{lowest, lowest, lowest};
        for (std::size_t i = 0; i < m_points.size(); ++i)
            if (!(m_points[i].cell == previous)) {
                previous = m_points[i].cell;
                m_cells.push_back(previous);
                m_offsets.push_back(static_cast<uint>(i));
            }
        m_offsets.push_back(static_cast<uint>(m_points.size()));
    }

    template <class Found>
    void visitBin(uint bin, const Point& centre, int dx, int dy, int dz, const Found& found) const
    {
        for (uint i = m_offsets[bin]; i < m_offsets[bin + 1]; ++i) {
            const Point& e = m_points[i];
            const float x = (static_cast<float>(dx) + e.local.x) - centre.local.x;
            const float y = (static_cast<float>(dy) + e.local.y) - centre.local.y;
            const float z = (static_cast<float>(dz) + e.local.z) - centre.local.z;
            if (1.0f >= (y * y + x * x) + z * z)
                found(e);
        }
    }

    tbb::concurrent_vector<Point, tbb::cache_aligned_allocator<Point>> m_points;
    std::vector<Cell> m_cells;
    std::vector<uint> m_offsets;
    tbb::concurrent_unordered_map<Cell, uint, HashOfCell> m_binOf;
};

float weightOf(uint share)
{
    return static_cast<float>(static_cast<double>(static_cast<float>(share)) * 0x1p-32);
}

float3 blend(const float3& p0, const float3& p1, const float3& p2, const float* w)
{
    return {(p1.x * w[1] + p2.x * w[2]) + p0.x * w[0], (p1.y * w[1] + p2.y * w[2]) + p0.y * w[0],
            (p1.z * w[1] + p2.z * w[2]) + p0.z * w[0]};
}

uint rotatedLeft(uint a, int bits)
{
    return a << bits | a >> (32 - bits);
}

uint counterHash(uint word, uint seed)
{
    uint acc = seed + 0x165667B5u + word * 0xC2B2AE3Du;
    acc = rotatedLeft(acc, 17) * 0x27D4EB2Fu;
    acc ^= acc >> 15;
    acc *= 0x85EBCA77u;
    acc ^= acc >> 13;
    acc *= 0xC2B2AE3Du;
    return acc ^ acc >> 16;
}

Samples samplesOf(std::size_t count)
{
    return {Array<float>(3 * count), Array<float3>(count), Array<uint>(count)};
}

void copySample(const Samples& from, std::size_t k, Samples& to, std::size_t w)
{
    for (std::size_t a = 0; a < 3; ++a)
        to.weights[3 * w + a] = from.weights[3 * k + a];
    to.positions[w] = from.positions[k];
    to.faceIds[w] = from.faceIds[k];
}

void compact(const Array<unsigned char>& rejected, Samples& samples)
{
    std::size_t w = 0;
    for (std::size_t k = 0; k < samples.faceIds.size(); ++k)
        if ((rejected.empty() || !rejected[k]) && w != k)
            copySample(samples, k, samples, w++);
    samples.weights.resize(3 * w);
    samples.positions.resize(w);
    samples.faceIds.resize(w);
}

Samples groupByFace(const Samples& samples)
{
    std::vector<std::pair<uint, uint>> order(samples.faceIds.size());
    for (std::size_t k = 0; k < order.size(); ++k)
        order[k] = {samples.faceIds[k], static_cast<uint>(k)};
    tbb::parallel_sort(order.begin(), order.end());
    Samples grouped = samplesOf(order.size());
    parallelFor(order.size(),
                [&](std::size_t j) { copySample(samples, order[j].second, grouped, j); });
    return grouped;
}

Array<uint> faceOffsets(const Array<uint>& faceIds, uint faceCount)
{
    Array<uint> offset(std::size_t{faceCount} + 1);
    uint current = 0;
    for (std::size_t j = 0; j < faceIds.size(); ++j)
        while (current < faceIds[j])
            offset[++current] = static_cast<uint>(j);
    while (current < faceCount)
        offset[++current] = static_cast<uint>(faceIds.size());
    return offset;
}

}  // namespace

Array<float> triangleAreas(const Mesh& mesh)
{
    Array<float> areas(mesh.faceVertex.size() / 3);
    parallelFor(areas.size(), [&](std::size_t t) {
        const uint* const corner = &mesh.faceVertex[3 * t];
        areas[t] =
            triangleArea(mesh.points[corner[0]], mesh.points[corner[1]], mesh.points[corner[2]]);
    });
    return areas;
}

float totalArea(const Array<float>& areas)
{
    return tbb::parallel_deterministic_reduce(
        Range(0, areas.size(), 1), 0.0f,
        [&areas](const Range& range, float sum) {
            for (std::size_t t = range.begin(); t < range.end(); ++t)
                sum += areas[t];
            return sum;
        },
        std::plus<float>(), tbb::simple_partitioner());
}

AliasTable aliasTable(const Array<float>& areas, float total)
{
    const uint triangles = static_cast<uint>(areas.size());
    uint slots = 1;
    while (slots < triangles)
        slots *= 2;
    AliasTable table{Array<uint>(slots), Array<uint>(slots)};
    std::vector<float> q(slots);
    std::vector<uint> small, large, zero;
    const float scale = static_cast<float>(slots) / total;
    for (uint t = 0; t < triangles; ++t) {
        q[t] = areas[t] * scale;
        moveOrKeep(t, q[t], small, large);
    }
    for (uint t = triangles; t < slots; ++t)
        zero.push_back(t);
    for (; !zero.empty() && !large.empty(); zero.pop_back()) {
        const uint l = large.back();
        table.threshold[zero.back()] = 0;
        table.alias[zero.back()] = l;
        q[l] -= 1.0f;
        if (1.0f > q[l]) {
            large.pop_back();
            small.push_back(l);
        }
    }
    // Fillers that are left over keep the threshold 0 and the alias 0.
    while (!small.empty() && !large.empty()) {
        const uint u = small.back(), l = large.back();
        small.pop_back();
        large.pop_back();
        table.threshold[u] = static_cast<uint>(static_cast<double>(q[u]) * 4294967296.0);
        table.alias[u] = l;
        q[l] = (q[l] + q[u]) - 1.0f;
        moveOrKeep(l, q[l], small, large);
    }
    small.insert(small.end(), large.begin(), large.end());
    for (const uint slot : small) {
        table.threshold[slot] = 0xFFFFFFFF;
        table.alias[slot] = slot;
    }
    return table;
}

uint candidateCount(float total, float distance)
{
    const float half = distance * 0.5f;
    const float density = 5.0f / ((half * 3.1415927f) * half);
    const float count = total * density;
    return count < 0x1p63f ? static_cast<uint>(static_cast<std::uint64_t>(count)) : 0;
}

Samples drawCandidates(const Mesh& mesh, float distance, uint seed)
{
    const Array<float> areas = triangleAreas(mesh);
    const float total = totalArea(areas);
    const uint count = candidateCount(total, distance);
    if (count == 0)
        return {};
    const AliasTable table = aliasTable(areas, total);
    Samples drawn = samplesOf(count);
    const uint mask = static_cast<uint>(table.alias.size() - 1);
    parallelFor(count, [&](std::size_t i) {
        const uint x = 4 * static_cast<uint>(i);
        uint t = counterHash(x, seed) & mask;
        if (counterHash(x + 1, seed) >= table.threshold[t])
            t = table.alias[t];
        drawn.faceIds[i] = t;
        const uint v = counterHash(x + 2, seed), u = counterHash(x + 3, seed);
        const uint high = std::max(u, v), low = std::min(u, v);
        float* const w = &drawn.weights[3 * i];
        w[0] = weightOf(~high);
        w[1] = weightOf(low);
        w[2] = weightOf(high - low);
        const uint* const corner = &mesh.faceVertex[3 * std::size_t{t}];
        drawn.positions[i] =
            blend(mesh.points[corner[0]], mesh.points[corner[1]], mesh.points[corner[2]], w);
    });
    return drawn;
}

Array<unsigned char> reject(const Array<float3>& positions, float distance,
                            const Array<float3>& fixedPoints)
{
    if (distance <= 1.1754944e-38f)
        return {};
    Array<unsigned char> rejected(positions.size());
    const float inverseSize = 1.0f / distance;
    const Bins bins(positions, inverseSize);
    for (const float3& p : fixedPoints)
        bins.visitNear(binned(0, p, inverseSize), [&](const Point& e) { rejected[e.id] = 1; });
    for (std::size_t i = 0; i < positions.size(); ++i)
        if (!rejected[i])
            bins.visitNear(binned(i, positions[i], inverseSize), [&](const Point& e) {
                if (e.id > i)
                    rejected[e.id] = 1;
            });
    return rejected;
}

Result sample(const Mesh& mesh, float distance, uint seed)
{
    Samples samples = drawCandidates(mesh, distance, seed);
    if (samples.faceIds.size() > 0)
        compact(reject(samples.positions, distance), samples);
    samples = groupByFace(samples);
    const uint faces = static_cast<uint>(mesh.faceVertex.size() / 3);
    Array<uint> offset = faceOffsets(samples.faceIds, faces);
    return {std::move(samples), std::move(offset)};
}

}  // namespace LiteralSampling
