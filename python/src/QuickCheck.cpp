#include "QuickCheck.h"

#include "Threads.h"

#include <Korvane/Geometry.h>
#include <TessaryMesh/Check.h>

#include <atomic>
#include <cstdint>
#include <cstring>

namespace TessaryPython {
namespace {

using namespace Korvane::Geometry;
using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::uint;

// Whether holds(i) for every i. Blocks have no way out, so that they can be vectorised.
template <class Holds>
bool all(std::size_t count, const Holds& holds)
{
    std::atomic<bool> result{true};
    parallelPieces(count, [&](std::size_t begin, std::size_t end) {
        unsigned wrong = 0;
        for (std::size_t i = begin; i < end; ++i)
            wrong |= holds(i) ? 0u : 1u;
        if (wrong != 0)
            result.store(false, std::memory_order_relaxed);
    });
    return result.load(std::memory_order_relaxed);
}

bool areFinite(const Array<float3>& points)
{
    constexpr uint kExponent = 0x7F800000;
    const auto* const numbers = reinterpret_cast<const unsigned char*>(points.data());
    return all(3 * points.size(), [numbers](std::size_t i) {
        uint bits;
        std::memcpy(&bits, numbers + 4 * i, sizeof bits);
        return (bits & kExponent) != kExponent;
    });
}

bool areOffsets(const Array<uint>& offsets, std::size_t cornerCount)
{
    if (offsets.empty() || offsets[0] != 0 || offsets[offsets.size() - 1] != cornerCount)
        return false;
    const uint* const offset = offsets.data();
    return all(offsets.size() - 1, [offset](std::size_t face) {
        return offset[face + 1] >= offset[face] && offset[face + 1] - offset[face] >= 3;
    });
}

bool nameElements(const Array<uint>& indices, std::size_t count)
{
    const uint* const index = indices.data();
    return all(indices.size(), [=](std::size_t i) { return index[i] < count; });
}

// The index after the last one, 0xFFFFFFFF + 1 = 0, stands for no value.
bool nameElementsOrNone(const Array<uint>& indices, std::size_t count)
{
    const uint* const index = indices.data();
    return all(indices.size(), [=](std::size_t i) { return uint(index[i] + 1) <= count; });
}

bool areIndicesValid(const Object& mesh)
{
    for (const TessaryMesh::PropertyFacts& facts : TessaryMesh::propertiesOf(mesh))
        if (const auto range = getRangeGeoProperty(mesh, facts.through))
            if (!nameElementsOrNone(*getRangeGeoPropIndices(*range), facts.values))
                return false;
    return true;
}

}  // namespace

bool stillHolds(const Object& mesh)
{
    const auto points = dataArray<float3>(mesh, sPointPosition);
    const auto offsets = dataArray<uint>(mesh, sFaceOffset);
    const auto corners = dataArray<uint>(mesh, sFaceVertex);
    if (!points || !offsets || !corners)
        return false;
    return nameElements(*corners, points->size()) && areOffsets(*offsets, corners->size()) &&
           areFinite(*points) && areIndicesValid(mesh);
}

}  // namespace TessaryPython
