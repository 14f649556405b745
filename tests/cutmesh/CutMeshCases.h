#pragma once

// Cut meshes to try interpolation on, and the literal rules to compare it with.

#include "support/MeshBuilding.h"

#include <Tessary/Tessary.h>

#include <cstring>
#include <functional>

namespace TestSupport {

/// A polygon mesh with its fan triangles and a description of its cut points.
struct CutCase {
    PolygonMesh polygons;
    Array<uint> triFaceVertex, dualOffset, dualCorner;
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
    for (uint i = 0; i < 4 * cut.triFaceVertex.size(); ++i) {
        cut.ids.push_back(i);
        cut.origins.push_back(i);
    }
    const auto meshWith = [&](uint points, Array<uint> offset, Array<uint> corners) {
        return Geometry::makeMesh(Array<float3>(points), std::move(offset), std::move(corners));
    };
    cut.source = meshWith(polygons.pointCount, polygons.faceOffset, polygons.faceVertex);
    cut.triMesh = meshWith(polygons.pointCount, triFaceOffset, cut.triFaceVertex);
    Tessary::addDual(*cut.triMesh, Geometry::sPointComp, Geometry::sFaceVertex, "dual_component",
                     "dual_face_vertex", "dual_face_offset");
    cut.dualOffset = *dataOf<uint>(*cut.triMesh, "dual_face_offset");
    cut.dualCorner = *dataOf<uint>(*cut.triMesh, "dual_face_vertex");
    const uint corners = static_cast<uint>(cut.origins.size());
    cut.target = meshWith(corners, Array<uint>(corners / 4 + 1), Array<uint>(corners));
    return cut;
}

inline void setPoints(CutCase& cut, Array<uint> ids, Array<uint> origins)
{
    Geometry::setElementCount(Geometry::sPointComp, static_cast<uint>(ids.size()), *cut.target);
    cut.ids = std::move(ids);
    cut.origins = std::move(origins);
}

/// Polygons over a grid with holes, of three, four and six corners; manifold, with random names for
/// its points.
inline PolygonMesh randomPolygonPatch(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const uint side = 3 + random() % 8;
    PolygonMesh mesh;
    mesh.pointCount = side * side;
    std::vector<uint> name(mesh.pointCount);
    for (uint p = 0; p < mesh.pointCount; ++p) {
        name[p] = p;
        std::swap(name[p], name[random() % (p + 1)]);
    }
    const auto add = [&](std::initializer_list<uint> points) {
        for (const uint p : points)
            mesh.faceVertex.push_back(name[p]);
        mesh.faceOffset.push_back(static_cast<uint>(mesh.faceVertex.size()));
    };
    for (uint y = 0; y + 1 < side; ++y)
        for (uint x = 0; x + 1 < side; ++x) {
            const uint a = y * side + x, b = a + side;
            const uint kind = random() % 5;
            if (kind == 0) {
                add({a, a + 1, b + 1});
                add({a, b + 1, b});
            } else if (kind == 1 && x + 2 < side) {
                add({a, a + 1, a + 2, b + 2, b + 1, b});
                ++x;
            } else if (kind > 1) {
                add({b + 1, b, a, a + 1});
            }
        }
    return mesh;
}

/// The rules written down as they are said.
namespace Literal {

inline float mix(float t, float a, float b)
{
    return t * a + (1 - t) * b;
}
inline double mix(float t, double a, double b)
{
    return double(t) * a + (1 - double(t)) * b;
}
inline float sum(const float* w, float a, float b, float c)
{
    return (w[0] * a + w[1] * b) + w[2] * c;
}
inline double sum(const float* w, double a, double b, double c)
{
    return (double(w[0]) * a + double(w[1]) * b) + double(w[2]) * c;
}

template <class T>
struct IsReal : std::bool_constant<std::is_floating_point_v<T>> {};
template <class S>
struct IsReal<Korvane::Math::Vector2<S>> : std::is_floating_point<S> {};
template <class S>
struct IsReal<Korvane::Math::Vector3<S>> : std::is_floating_point<S> {};
template <class S>
struct IsReal<Korvane::Math::Vector4<S>> : std::is_floating_point<S> {};

// Real vectors are as many scalars in a row.
template <class T, class F>
T perScalar(const F& f, const T* const (&in)[3])
{
    using S = std::conditional_t<sizeof(T) % sizeof(double) == 0 &&
                                     (std::is_same_v<T, double> ||
                                      std::is_same_v<T, Korvane::Math::double2> ||
                                      std::is_same_v<T, Korvane::Math::double3> ||
                                      std::is_same_v<T, Korvane::Math::double4>),
                                 double, float>;
    constexpr std::size_t n = sizeof(T) / sizeof(S);
    S v[3][n];
    S out[n];
    for (int k = 0; k < 3; ++k)
        std::memcpy(v[k], in[k], sizeof(T));
    for (std::size_t i = 0; i < n; ++i)
        out[i] = f(v[0][i], v[1][i], v[2][i]);
    T result;
    std::memcpy(&result, out, sizeof(T));
    return result;
}

template <class T>
T onEdge(float t, const T& a, const T& b)
{
    if constexpr (IsReal<T>::value)
        return perScalar<T>([t](auto x, auto y, auto) { return mix(t, x, y); }, {&a, &b, &b});
    else
        return t >= 0.5f ? a : b;
}

template <class T>
T inTriangle(const float* w, const T& a, const T& b, const T& c)
{
    if constexpr (IsReal<T>::value)
        return perScalar<T>([w](auto x, auto y, auto z) { return sum(w, x, y, z); }, {&a, &b, &c});
    else if (w[0] >= w[2] && w[0] >= w[1])
        return a;
    else if (w[0] >= w[2] && w[0] < w[1])
        return b;
    else if (w[0] < w[2] && w[1] >= w[2])
        return b;
    else
        return c;
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
    forEachTriangle(cut,
                    [&](uint f, uint, uint, uint, uint) { out.resize(out.size() + 3, in[f]); });
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
};

template <class T>
Indexed<T> indexedPoints(const CutCase& cut, const Indexed<T>& in, const T& none)
{
    Indexed<T> out{{}, in.values};
    const auto value = [&](uint c) {
        const uint index = in.indices[cut.triFaceVertex[c]];
        return index < in.values.size() ? in.values[index] : none;
    };
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
        const auto other =
            Tessary::findAdjacentHalfEdge(cut.triFaceVertex, cut.dualOffset, cut.dualCorner, edge);
        if (other.faceVertex != kNone &&
            Tessary::triEdgeToPolyEdge(offset, other).faceVertex != kNone &&
            out.indices[4 * other.faceVertex + 1] != kNone)
            return out.indices[4 * other.faceVertex + 1];
        return append(value);
    };
    forEachTriangle(cut, [&](uint f, uint j, uint x0, uint x1, uint x2) {
        const float* const t = &cut.edgeWeights[3 * j];
        const auto at = [&](uint x) {
            return in.indices[x] < in.values.size() ? in.values[in.indices[x]] : none;
        };
        const T f0 = at(x0), f1 = at(x1), f2 = at(x2);
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
