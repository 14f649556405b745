#pragma once

// How one property of one element type gets onto a cut mesh. Compiled for the blended types in
// BlendProperty.cpp and for the picked ones in PickProperty.cpp.

#include "base/Assert.h"
#include "base/FanTransfer.h"
#include "cutmesh/CutMesh.h"
#include "cutmesh/Interpolation.h"
#include "cutmesh/NewIndices.h"
#include "properties/ElementTypes.h"
#include "properties/OutputProperty.h"

#include <algorithm>

namespace Tessary {

template <class T>
void interpolatePoints(const CutMesh& cut, const Array<T>& pointValue, Array<T>& out)
{
    const T* const values = pointValue.data();
    const uint* const points = cut.cornerPoint->data();
    const auto valueAt = [&, values, points](uint corner) -> const T& {
        TESSARY_ASSERT(corner < cut.cornerPoint->size() && points[corner] < pointValue.size(),
                       "corner " << corner << " of " << cut.cornerPoint->size());
        return values[points[corner]];
    };
    parallelForEach(static_cast<uint>(out.size()), LoopContext::Bound, [&](uint point) {
        out[point] = valueAtOrigin<T>(cut.originOf(point), cut.weights, valueAt);
    });
}

template <class T>
void repeatOnQuads(const CutMesh& cut, const Array<T>& faceValue, Array<T>& out)
{
    forEachFan(*cut.faceOffset, LoopContext::Bound, [&](uint face, Fan fan) {
        TESSARY_ASSERT(fan.begin == fan.end ||
                           (face < faceValue.size() && std::size_t{3} * fan.end <= out.size()),
                       "face " << face << " of " << faceValue.size() << ", target face "
                               << 3 * fan.end << " of " << out.size());
        std::fill(out.begin() + std::size_t{3} * fan.begin, out.begin() + std::size_t{3} * fan.end,
                  faceValue[face]);
    });
}

//            f2             The twelve corners of a triangle's quads from its own three values:
//           .  .
//       e20      e12       0: f0 e01 centre e20
//        .  centre  .       1: f1 e12 centre e01
//     f0 --- e01 --- f1    2: f2 e20 centre e12
template <class T>
void interpolateTriangle(CutWeights weights, const T& f0, const T& f1, const T& f2, T* out)
{
    const T e01 = betweenTwo<T>(weights.edge[0], f0, f1);
    const T e12 = betweenTwo<T>(weights.edge[1], f1, f2);
    const T e20 = betweenTwo<T>(weights.edge[2], f2, f0);
    const T centre = amongThree<T>(weights.triangle, f0, f1, f2);
    out[0] = f0, out[1] = e01, out[2] = centre, out[3] = e20;
    out[4] = f1, out[5] = e12, out[6] = centre, out[7] = e01;
    out[8] = f2, out[9] = e20, out[10] = centre, out[11] = e12;
}

template <class T>
void interpolateCorners(const CutMesh& cut, const Array<T>& cornerValue, Array<T>& quadCornerValue)
{
    const T* const in = cornerValue.data();
    T* const out = quadCornerValue.data();
    const CutWeights weights = cut.weights;
    forEachFan(*cut.faceOffset, LoopContext::Bound, [&, in, out, weights](uint, Fan fan) {
        TESSARY_ASSERT(
            fan.begin == fan.end ||
                (fan.firstCorner + std::size_t{2} + (fan.end - fan.begin) <= cornerValue.size() &&
                 std::size_t{12} * fan.end <= quadCornerValue.size()),
            "corner " << fan.firstCorner << " of " << cornerValue.size() << ", target corner "
                      << 12 * fan.end << " of " << quadCornerValue.size());
        const T* corner = in + fan.firstCorner;
        const T& apex = *corner;
        for (std::size_t t = fan.begin; t < fan.end; ++t) {
            ++corner;
            interpolateTriangle({weights.edge + 3 * t, weights.triangle + 3 * t}, apex, corner[0],
                                corner[1], out + 12 * t);
        }
    });
}

template <class T>
bool transferPlain(const CutTransfer& transfer, const Array<T>& data)
{
    const CutMesh& cut = transfer.cut;
    const auto filled = [&](bool hasTopology, const auto& fill) {
        if (hasTopology)
            fill(cut, data,
                 *buildOutputProperty<T>(transfer.component, transfer.property, transfer.name,
                                         cut.target));
        return hasTopology;
    };
    if (transfer.component == Geometry::sPointComp)
        return filled(cut.hasTriangles(), interpolatePoints<T>);
    if (transfer.component == Geometry::sFaceComp)
        return filled(cut.hasFaces(), repeatOnQuads<T>);
    if (transfer.component == Geometry::sFaceVertexComp)
        return filled(cut.hasFaces(), interpolateCorners<T>);
    return false;
}

/// The source's values and behind them one for each code of `appended`. `indexAt(corner)` is the
/// index into the source's values at a corner of the triangles.
template <class T, class IndexAt>
Ptr<Array<T>> appendValues(const CutMesh& cut, const Ptr<Array<T>>& values,
                           const Array<uint>& appended, const T& defaultValue,
                           const IndexAt& indexAt)
{
    if (appended.empty())
        return values;
    const Array<T>& old = *values;
    const MutablePtr<Array<T>> all = makeMutable<Array<T>>(old.size() + appended.size());
    std::copy(old.begin(), old.end(), all->begin());
    T* const out = all->data() + old.size();
    const auto valueAt = [&](uint corner) -> const T& {
        const uint index = indexAt(corner);
        return index < old.size() ? old[index] : defaultValue;
    };
    // Isolated, as if the values were appended one by one: indexed properties are never polled for.
    parallelForEach(static_cast<uint>(appended.size()), LoopContext::Isolated,
                    [&](uint i) { out[i] = valueAtOrigin<T>(appended[i], cut.weights, valueAt); });
    return all;
}

template <class T>
bool transferIndexed(const CutTransfer& transfer, const Ptr<Array<T>>& values)
{
    CutMesh& cut = transfer.cut;
    const Ptr<Object> sourceRange = Geometry::getRangeGeoProperty(cut.source, transfer.chain[0]);
    if (!sourceRange)
        return false;
    const Ptr<Array<uint>> indices = Geometry::getRangeGeoPropIndices(*sourceRange);
    const uint valueCount = static_cast<uint>(values->size());
    const T defaultValue = defaultValueOf<T>(transfer.property);

    NewIndices made;
    Ptr<Array<T>> newValues = values;
    if (transfer.component == Geometry::sPointComp && cut.hasTriangles()) {
        made = pointIndices(cut, *indices, valueCount);
        newValues = appendValues<T>(cut, values, made.appended, defaultValue, [&](uint corner) {
            return (*indices)[(*cut.cornerPoint)[corner]];
        });
    } else if (transfer.component == Geometry::sFaceComp && cut.hasFaces()) {
        made = faceIndices(cut, *indices);
    } else if (transfer.component == Geometry::sFaceVertexComp && cut.hasNeighbours()) {
        made = cornerIndices(cut, *indices, valueCount);
        newValues = appendValues<T>(cut, values, made.appended, defaultValue, [&](uint corner) {
            return (*made.indices)[std::size_t{4} * corner];
        });
    } else {
        return false;
    }

    attachSharedProperty<T>(transfer.chain[0], transfer.name, std::move(newValues), defaultValue,
                            cut.target);
    const MutablePtr<Object> range = Korvane::createObject();
    Geometry::populateRangeGeoProperty(made.indices, transfer.component, *range);
    cut.target.setProperty(transfer.chain[0], range);
    return true;
}

/// True where the property's default is a T and the property has been transferred.
template <class T>
bool transferAs(const CutTransfer& transfer, const Any& defaultValue)
{
    if (!defaultValue.get<T>())
        return false;
    const Ptr<Array<T>> data = sharedValue<Array<T>>(transfer.property, Geometry::sData);
    if (!data || transfer.chain.size() > 1)
        return false;
    return transfer.chain.empty() ? transferPlain(transfer, *data)
                                  : transferIndexed(transfer, data);
}

/// For the types of the list, as above.
template <bool kBlended, class... T>
bool transferAsOneOf(TypeList<T...>, const CutTransfer& transfer, const Any& defaultValue)
{
    const auto tryType = [&](auto tag) {
        using U = typename decltype(tag)::type;
        if constexpr ((kBlendedComponents < U >> 0) == kBlended)
            return transferAs<U>(transfer, defaultValue);
        else
            return false;
    };
    return (tryType(TypeTag<T>()) || ...);
}

}  // namespace Tessary
