#pragma once

// Cut meshes to try interpolation on, and the literal rules to compare it with.

#include "support/TriangleMeshes.h"

#include <array>
#include <cstring>
#include <functional>

namespace TestSupport {

/// A polygon mesh with its fan triangles and a description of its cut points.
struct CutCase {
    PolygonMesh polygons;
    Array<uint> triFaceVertex;
    Dual dual;
    Array<float> triangleWeights, edgeWeights;
    Array<uint> ids, origins;
    MutablePtr<Object> source, triMesh, target;

    uint triangleCount() const { return static_cast<uint>(triFaceVertex.size() / 3); }
    uint codeOf(uint point) const { return origins[ids[point]]; }

    void interpolate() const
    {
        Tessary::interpolatePropertiesToCutMesh(*source, triangleWeights, edgeWeights, *triMesh,
                                                ids, origins, *target);
    }
};

/// All edges are cut at `t`, all triangles at `w`; the cut points are the entries of the quads
/// themselves, so that entry i has code i.
inline CutCase cutCase(const PolygonMesh& polygons, float t = 0.5f,
                       const Array<float>& w = {0.25f, 0.25f, 0.5f})
{
    CutCase cut;
    cut.polygons = polygons;
    Array<uint> triFaceOffset;
    Tessary::computeTriangulation(polygons.faceOffset, polygons.faceVertex, triFaceOffset,
                                  cut.triFaceVertex);
    cut.edgeWeights = Array<float>(cut.triFaceVertex.size(), t);
    for (std::size_t c = 0; c < cut.triFaceVertex.size(); ++c)
        cut.triangleWeights.push_back(w[c % 3]);
    const uint entries = 4 * static_cast<uint>(cut.triFaceVertex.size());
    for (uint i = 0; i < entries; ++i)
        cut.ids.push_back(i);
    cut.origins = cut.ids;
    cut.source = meshOf(polygons);
    cut.triMesh = meshOf({polygons.pointCount, triFaceOffset, cut.triFaceVertex});
    Tessary::addDual(*cut.triMesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual_component",
                     "dual_face_vertex", "dual_face_offset");
    cut.dual = dualOf({"", polygons.pointCount, cut.triFaceVertex});
    cut.target = meshOf({entries, Array<uint>(entries / 4 + 1), Array<uint>(entries)});
    return cut;
}

inline void setPoints(CutCase& cut, Array<uint> ids, Array<uint> origins)
{
    Geometry::setElementCount(Geometry::sPointComp, static_cast<uint>(ids.size()), *cut.target);
    cut.ids = std::move(ids);
    cut.origins = std::move(origins);
}

/// The rules written down as they are said.
namespace Literal {

// The numbers of which real types consist; void for types that are picked and not blended.
template <class T>
struct Scalar {
    using type = std::conditional_t<std::is_floating_point_v<T>, T, void>;
};
template <template <class> class Vector, class T>
struct Scalar<Vector<T>> : Scalar<T> {};

template <class T>
using ScalarOf = typename Scalar<T>::type;
template <class T>
constexpr bool kIsReal = !std::is_void_v<ScalarOf<T>>;

template <class T>
auto scalarsOf(const T& value)
{
    std::array<ScalarOf<T>, sizeof(T) / sizeof(ScalarOf<T>)> scalars;
    std::memcpy(&scalars, &value, sizeof(T));
    return scalars;
}

// Real vectors are as many scalars in a row.
template <class T, class F>
T perScalar(const F& f, const T& a, const T& b, const T& c)
{
    auto x = scalarsOf(a);
    const auto y = scalarsOf(b), z = scalarsOf(c);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = f(x[i], y[i], z[i]);
    T result;
    std::memcpy(&result, &x, sizeof(T));
    return result;
}

template <class T>
T onEdge(float weight, const T& a, const T& b)
{
    if constexpr (kIsReal<T>) {
        const ScalarOf<T> t = weight;
        return perScalar([t](auto x, auto y, auto) { return t * x + (1 - t) * y; }, a, b, b);
    } else {
        return weight >= 0.5f ? a : b;
    }
}

template <class T>
T inTriangle(const float* w, const T& a, const T& b, const T& c)
{
    if constexpr (kIsReal<T>) {
        const ScalarOf<T> s = w[0], t = w[1], u = w[2];
        return perScalar([=](auto x, auto y, auto z) { return (s * x + t * y) + u * z; }, a, b, c);
    } else if (w[0] >= w[2] && w[0] >= w[1]) {
        return a;
    } else {
        return (w[0] >= w[2] && w[0] < w[1]) || (w[0] < w[2] && w[1] >= w[2]) ? b : c;
    }
}

template <class T>
T atCode(const CutCase& cut, uint code, const std::function<T(uint)>& v)
{
    const uint c = code >> 2, k = c / 3;
    const uint next = 3 * k + (c % 3 + 1) % 3, prev = 3 * k + (c % 3 + 2) % 3;
    switch (code & 3) {
        case 0:
            return v(c);
        case 1:
            return onEdge<T>(cut.edgeWeights[c], v(c), v(next));
        case 2:
            return inTriangle<T>(&cut.triangleWeights[3 * k], v(3 * k), v(3 * k + 1), v(3 * k + 2));
        default:
            return onEdge<T>(cut.edgeWeights[prev], v(prev), v(c));
    }
}

template <class T>
Array<T> pointValues(const CutCase& cut, const Array<T>& in)
{
    Array<T> out;
    for (uint i = 0; i < cut.ids.size(); ++i)
        out.push_back(
            atCode<T>(cut, cut.codeOf(i), [&](uint c) { return in[cut.triFaceVertex[c]]; }));
    return out;
}

// Calls `visit(face, triangle, x0, x1, x2)` with the triangle's polygon corners.
template <class Visit>
void forEachTriangle(const CutCase& cut, const Visit& visit)
{
    const Array<uint>& offset = cut.polygons.faceOffset;
    for (uint f = 0; f + 1 < offset.size(); ++f)
        for (uint m = 0; offset[f] + m + 2 < offset[f + 1]; ++m)
            visit(f, offset[f] - 2 * f + m, offset[f], offset[f] + m + 1, offset[f] + m + 2);
}

template <class T>
Array<T> faceValues(const CutCase& cut, const Array<T>& in)
{
    Array<T> out;
    forEachTriangle(cut, [&](uint f, auto...) { out.resize(out.size() + 3, in[f]); });
    return out;
}

template <class T>
Array<T> cornerValues(const CutCase& cut, const Array<T>& in)
{
    Array<T> out;
    forEachTriangle(cut, [&](uint, uint j, uint x0, uint x1, uint x2) {
        const float* const t = &cut.edgeWeights[3 * j];
        const T f0 = in[x0], f1 = in[x1], f2 = in[x2];
        const T e01 = onEdge(t[0], f0, f1), e12 = onEdge(t[1], f1, f2), e20 = onEdge(t[2], f2, f0);
        const T centre = inTriangle(&cut.triangleWeights[3 * j], f0, f1, f2);
        for (const T& v : {f0, e01, centre, e20, f1, e12, centre, e01, f2, e20, centre, e12})
            out.push_back(v);
    });
    return out;
}

template <class T>
struct Indexed {
    Array<uint> indices;
    Array<T> values;

    T at(uint element, const T& none) const
    {
        return indices[element] < values.size() ? values[indices[element]] : none;
    }
};

template <class T>
Indexed<T> indexedPoints(const CutCase& cut, const Indexed<T>& in, const T& none)
{
    Indexed<T> out{{}, in.values};
    const auto value = [&](uint c) { return in.at(cut.triFaceVertex[c], none); };
    for (uint i = 0; i < cut.ids.size(); ++i) {
        const uint code = cut.codeOf(i);
        if ((code & 3) == 0) {
            out.indices.push_back(in.indices[cut.triFaceVertex[code >> 2]]);
        } else {
            out.indices.push_back(static_cast<uint>(out.values.size()));
            out.values.push_back(atCode<T>(cut, code, value));
        }
    }
    return out;
}

template <class T>
Indexed<T> indexedCorners(const CutCase& cut, const Indexed<T>& in, const T& none)
{
    const Array<uint>& offset = cut.polygons.faceOffset;
    Indexed<T> out{Array<uint>(12 * cut.triangleCount(), kNone), in.values};
    const auto append = [&](const T& value) {
        out.values.push_back(value);
        return static_cast<uint>(out.values.size() - 1);
    };
    const auto polygonEdge = [&](uint x, uint f, const T& value) {
        const auto edge = Tessary::polyEdgeToTriEdge(offset, {x, f});
        const auto other = Tessary::findAdjacentHalfEdge(cut.triFaceVertex, cut.dual.offset,
                                                         cut.dual.corners, edge);
        if (other.faceVertex != kNone &&
            Tessary::triEdgeToPolyEdge(offset, other).faceVertex != kNone &&
            out.indices[4 * other.faceVertex + 1] != kNone)
            return out.indices[4 * other.faceVertex + 1];
        return append(value);
    };
    forEachTriangle(cut, [&](uint f, uint j, uint x0, uint x1, uint x2) {
        const float* const t = &cut.edgeWeights[3 * j];
        const T f0 = in.at(x0, none), f1 = in.at(x1, none), f2 = in.at(x2, none);
        const bool first = x1 == x0 + 1, last = x2 + 1 == offset[f + 1];
        const uint e01 =
            first ? polygonEdge(x0, f, onEdge(t[0], f0, f1)) : out.indices[12 * (j - 1) + 3];
        const uint centre = append(inTriangle(&cut.triangleWeights[3 * j], f0, f1, f2));
        const T v20 = onEdge(t[2], f2, f0);
        const uint e20 = last ? polygonEdge(x2, f, v20) : append(v20);
        const uint e12 = polygonEdge(x1, f, onEdge(t[1], f1, f2));
        uint slot = 12 * j;
        for (const uint index : {in.indices[x0], e01, centre, e20, in.indices[x1], e12, centre, e01,
                                 in.indices[x2], e20, centre, e12})
            out.indices[slot++] = index;
    });
    return out;
}

}  // namespace Literal
}  // namespace TestSupport
