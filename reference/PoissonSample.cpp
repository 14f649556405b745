#include "reference/PoissonSample.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Reference {
namespace {

// Turns (a, b) into (r, 0) and a partner pair (x, y) with it.
void rotate(float& a, float& b, float& x, float& y)
{
    float c, s;
    if (std::fabs(b) > std::fabs(a)) {
        const float t = a / std::fabs(b), inverse = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
        c = t * inverse;
        s = -std::copysign(1.0f, b) * inverse;
    } else if (std::fabs(a) > std::fabs(b)) {
        const float t = b / std::fabs(a), inverse = 1.0f / std::sqrt(std::fma(t, t, 1.0f));
        c = std::copysign(1.0f, a) * inverse;
        s = -t * inverse;
    } else {
        c = std::copysign(1.0f, a) / std::sqrt(2.0f);
        s = -std::copysign(1.0f, b) / std::sqrt(2.0f);
    }
    a = a * c - s * b;
    b = 0.0f;
    const float oldX = x;
    x = x * c - y * s;
    y = y * c + oldX * s;
}

float triangleArea(const float3& p0, const float3& p1, const float3& p2)
{
    float3 e1{p1.x - p0.x, p1.y - p0.y, p1.z - p0.z};
    float3 e2{p2.x - p0.x, p2.y - p0.y, p2.z - p0.z};
    float none = 0, nothing = 0;
    rotate(e1.y, e1.z, e2.y, e2.z);
    rotate(e1.x, e1.y, e2.x, e2.y);
    rotate(e2.y, e2.z, none, nothing);
    return std::fabs((e1.x * 0.5f) * e2.y);
}

float sumOf(const float* values, std::size_t count)
{
    if (count < 2)
        return count == 0 ? 0 : *values;
    return sumOf(values, count / 2) + sumOf(values + count / 2, count - count / 2);
}

// xxHash32 of one word.
uint randomNumber(uint word, uint seed)
{
    const auto rotatedLeft = [](uint a, int bits) { return a << bits | a >> (32 - bits); };
    uint acc = seed + 0x165667B5u + word * 0xC2B2AE3Du;
    acc = rotatedLeft(acc, 17) * 0x27D4EB2Fu;
    acc = (acc ^ acc >> 15) * 0x85EBCA77u;
    acc = (acc ^ acc >> 13) * 0xC2B2AE3Du;
    return acc ^ acc >> 16;
}

float weightOf(uint share)
{
    return static_cast<float>(static_cast<double>(static_cast<float>(share)) * 0x1p-32);
}

using Cell = std::array<std::int32_t, 3>;
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

struct HashOfCell {
    std::size_t operator()(const Cell& cell) const
    {
        std::uint64_t hash = 0;
        for (const std::int32_t a : cell)
            hash = (hash ^ static_cast<uint>(a)) * 0x9E3779B97F4A7C15u;
        return hash ^ hash >> 32;
    }
};

struct Binned {
    uint id;
    float3 local;
    Cell cell;
};

Binned binned(uint id, const float3& p, float inverseSize)
{
    const float scaled[] = {inverseSize * p.x, inverseSize * p.y, inverseSize * p.z};
    Binned point = {id, {}, {}};
    for (int a = 0; a < 3; ++a) {
        const float low = std::floor(scaled[a] + 0.5f);
        point.cell[a] = low >= -0x1p31f && low < 0x1p31f ? static_cast<std::int32_t>(low) : kLowest;
        (&point.local.x)[a] = scaled[a] - static_cast<float>(point.cell[a]);
    }
    return point;
}

using Bins = std::unordered_map<Cell, std::vector<Binned>, HashOfCell>;

// Calls found(e) for every point e of the 27 cells around c within a cell's width of it.
template <class Found>
void visitNear(const Bins& bins, const Binned& c, const Found& found)
{
    for (int n = 0; n < 27; ++n) {
        const int d[] = {n / 9 - 1, n / 3 % 3 - 1, n % 3 - 1};
        Cell cell;
        for (int a = 0; a < 3; ++a)
            cell[a] = static_cast<std::int32_t>(static_cast<uint>(c.cell[a]) + d[a]);
        const auto bin = bins.find(cell);
        if (bin == bins.end())
            continue;
        for (const Binned& e : bin->second) {
            const float x = (static_cast<float>(d[0]) + e.local.x) - c.local.x;
            const float y = (static_cast<float>(d[1]) + e.local.y) - c.local.y;
            const float z = (static_cast<float>(d[2]) + e.local.z) - c.local.z;
            if (1.0f >= (y * y + x * x) + z * z)
                found(e.id);
        }
    }
}

void copySample(const Samples& from, std::size_t k, Samples& to, std::size_t w)
{
    std::copy_n(&from.weights[3 * k], 3, &to.weights[3 * w]);
    to.positions[w] = from.positions[k];
    to.faceIds[w] = from.faceIds[k];
}

void resize(Samples& samples, std::size_t count)
{
    samples.weights.resize(3 * count);
    samples.positions.resize(count);
    samples.faceIds.resize(count);
}

void compact(const Array<unsigned char>& rejected, Samples& samples)
{
    std::size_t w = 0;
    for (std::size_t k = 0; k < samples.faceIds.size(); ++k)
        if ((rejected.empty() || !rejected[k]) && w != k)
            copySample(samples, k, samples, w++);
    resize(samples, w);
}

Samples groupByFace(const Samples& samples)
{
    std::vector<std::size_t> order(samples.faceIds.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&samples](std::size_t a, std::size_t b) {
        return samples.faceIds[a] < samples.faceIds[b];
    });
    Samples grouped;
    resize(grouped, order.size());
    for (std::size_t j = 0; j < order.size(); ++j)
        copySample(samples, order[j], grouped, j);
    return grouped;
}

}  // namespace

Array<float> triangleAreas(const TriangleMesh& mesh)
{
    Array<float> areas(mesh.faceVertex.size() / 3);
    for (std::size_t t = 0; t < areas.size(); ++t) {
        const uint* const corner = &mesh.faceVertex[3 * t];
        areas[t] =
            triangleArea(mesh.points[corner[0]], mesh.points[corner[1]], mesh.points[corner[2]]);
    }
    return areas;
}

float totalArea(const Array<float>& areas)
{
    return sumOf(areas.data(), areas.size());
}

AliasTable aliasTable(const Array<float>& areas, float total)
{
    const uint triangles = static_cast<uint>(areas.size());
    uint slots = 1;
    while (slots < triangles)
        slots *= 2;
    AliasTable table{Array<uint>(slots), Array<uint>(slots)};
    std::vector<float> q(slots);
    std::vector<uint> small, large;
    const auto file = [&](uint slot) { (1.0f > q[slot] ? small : large).push_back(slot); };
    const auto take = [](std::vector<uint>& slotsLeft) {
        const uint slot = slotsLeft.back();
        slotsLeft.pop_back();
        return slot;
    };
    const float scale = static_cast<float>(slots) / total;
    for (uint t = 0; t < triangles; ++t) {
        q[t] = areas[t] * scale;
        file(t);
    }
    // Fillers that are left over keep the threshold 0 and the alias 0.
    for (uint z = slots; z-- > triangles && !large.empty();) {
        const uint l = table.alias[z] = take(large);
        q[l] -= 1.0f;
        file(l);
    }
    while (!small.empty() && !large.empty()) {
        const uint u = take(small), l = table.alias[u] = take(large);
        table.threshold[u] = static_cast<uint>(static_cast<double>(q[u]) * 4294967296.0);
        q[l] = (q[l] + q[u]) - 1.0f;
        file(l);
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

void drawCandidates(const TriangleMesh& mesh, float distance, uint seed, uint& counted,
                    Samples& drawn)
{
    const Array<float> areas = triangleAreas(mesh);
    const float total = totalArea(areas);
    const uint count = candidateCount(total, distance);
    if (count == 0)
        return;
    const AliasTable table = aliasTable(areas, total);
    const std::size_t base = drawn.faceIds.size();
    resize(drawn, base + count);
    for (std::size_t i = base; i < base + count; ++i) {
        const uint x = 4 * static_cast<uint>(i) + 4 * counted;
        uint t = randomNumber(x, seed) & static_cast<uint>(table.alias.size() - 1);
        if (randomNumber(x + 1, seed) >= table.threshold[t])
            t = table.alias[t];
        drawn.faceIds[i] = t;
        const uint v = randomNumber(x + 2, seed), u = randomNumber(x + 3, seed);
        const uint high = std::max(u, v), low = std::min(u, v);
        const float w[] = {weightOf(~high), weightOf(low), weightOf(high - low)};
        std::copy_n(w, 3, &drawn.weights[3 * i]);
        const uint* const corner = &mesh.faceVertex[3 * std::size_t{t}];
        for (float float3::*const a : {&float3::x, &float3::y, &float3::z})
            drawn.positions[i].*a =
                (mesh.points[corner[1]].*a * w[1] + mesh.points[corner[2]].*a * w[2]) +
                mesh.points[corner[0]].*a * w[0];
    }
    counted += count;
}

Samples drawCandidates(const TriangleMesh& mesh, float distance, uint seed)
{
    Samples drawn;
    uint counted = 0;
    drawCandidates(mesh, distance, seed, counted, drawn);
    return drawn;
}

Array<unsigned char> reject(const Array<float3>& positions, float distance,
                            const Array<float3>& fixedPoints)
{
    if (distance <= 1.1754944e-38f)
        return {};
    const float inverseSize = 1.0f / distance;
    Bins bins;
    for (uint i = 0; i < positions.size(); ++i) {
        const Binned point = binned(i, positions[i], inverseSize);
        if (point.cell != Cell{kLowest, kLowest, kLowest})  // is no bin
            bins[point.cell].push_back(point);
    }
    Array<unsigned char> rejected(positions.size());
    for (const float3& p : fixedPoints)
        visitNear(bins, binned(0, p, inverseSize), [&](uint e) { rejected[e] = 1; });
    for (uint i = 0; i < positions.size(); ++i)
        if (!rejected[i])
            visitNear(bins, binned(i, positions[i], inverseSize), [&](uint e) {
                if (e > i)
                    rejected[e] = 1;
            });
    return rejected;
}

SampleResult poissonSample(const TriangleMesh& mesh, float distance, uint seed)
{
    Samples samples = drawCandidates(mesh, distance, seed);
    compact(reject(samples.positions, distance), samples);
    samples = groupByFace(samples);
    const std::size_t faces = mesh.faceVertex.size() / 3;
    Array<uint> offset(faces + 1);
    for (std::size_t f = 0; f <= faces; ++f)
        offset[f] =
            static_cast<uint>(std::lower_bound(samples.faceIds.begin(), samples.faceIds.end(), f) -
                              samples.faceIds.begin());
    return {std::move(samples), std::move(offset)};
}

}  // namespace Reference
