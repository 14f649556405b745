#include <TessaryMesh/Operations.h>

#include "base/Guard.h"
#include "base/Host.h"
#include "base/Vectors.h"

#include <cmath>
#include <initializer_list>
#include <iterator>
#include <vector>

namespace TessaryMesh {
namespace {

constexpr uint kSmallest = 8;
constexpr uint kLargest = 8192;     // 32 bits number its corners, with room for triangles
constexpr uint kCellsPerBlock = 4;  // the patterns below fill blocks of this many cells
constexpr uint kMaterials = 5;

// What fills a block: rows of cells merged into one face each, by their number; a cell split into two
// triangles; two cells split into a pentagon and a triangle.
constexpr uint kSplit = 100, kPentagon = 101;
constexpr uint kBlocks[][kCellsPerBlock] = {
    {1, 1, 1, 1}, {2, 1, 1}, {3, 1}, {kPentagon, kSplit, 1}, {1, 2, kSplit}, {1, 1, kPentagon}};

constexpr const char* kMaterialNames[kMaterials] = {"brass", "clay", "linen", "moss", "slate"};

struct CosSin {
    double cos, sin;
};

// Cosine and sine of an angle up to an eighth of a turn, by their series: the library's own
// functions differ in the last bit from machine to machine.
CosSin cosSinSmall(double angle)
{
    const double square = angle * angle;
    CosSin sum = {1, 1};
    for (int n = 16; n >= 2; n -= 2) {
        sum.cos = 1 - sum.cos * square / (n * (n - 1));
        sum.sin = 1 - sum.sin * square / (n * (n + 1));
    }
    return {sum.cos, sum.sin * angle};
}

// Of `step` parts of a whole turn of `steps` parts.
CosSin cosSin(uint step, uint steps)
{
    constexpr double pi = 3.14159265358979323846;
    const uint eighth = 8 * step / steps;
    // The angle from the nearest axis, in eighths of a turn of `steps`: exact in integers.
    const uint axis = (eighth + 1) / 2;
    const double turns8 = static_cast<double>(8 * step) - 2.0 * axis * steps;
    const CosSin rest = cosSinSmall(turns8 * pi / (4.0 * steps));
    switch (axis % 4) {
        case 0:
            return rest;
        case 1:
            return {-rest.sin, rest.cos};
        case 2:
            return {-rest.cos, -rest.sin};
        default:
            return {rest.sin, -rest.cos};
    }
}

std::vector<CosSin> circle(uint steps)
{
    std::vector<CosSin> table(steps);
    for (uint i = 0; i < steps; ++i)
        table[i] = cosSin(i, steps);
    return table;
}

// A face's cells are chosen by a fixed mixture of their place.
uint mixed(uint a, uint b)
{
    uint h = a * 0x9E3779B1u + b * 0x85EBCA77u;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

/// A torus whose tube swells and shrinks and has a ridge along two of its lines. Column i goes round
/// the ring, row j round the tube; the cell (i, j) has its corners at columns i, i + 1 and rows
/// j, j + 1.
class Torus {
public:
    explicit Torus(uint resolution)
        : m_columns(4 * resolution),
          m_rows(resolution),
          m_ring(circle(m_columns)),
          m_tube(circle(m_rows))
    {
        m_points.reserve(std::size_t(m_columns) * m_rows);
        for (uint j = 0; j < m_rows; ++j)
            for (uint i = 0; i < m_columns; ++i)
                m_points.push_back(pointAt(i, j));
    }

    uint columns() const { return m_columns; }
    uint rows() const { return m_rows; }
    uint point(uint i, uint j) const { return j % m_rows * m_columns + i % m_columns; }
    uint uv(uint i, uint j) const { return j * (m_columns + 1) + i; }

    Array<float3> positions() const
    {
        Array<float3> out(m_points.size());
        for (std::size_t p = 0; p < out.size(); ++p)
            out[p] = {static_cast<float>(m_points[p].x), static_cast<float>(m_points[p].y),
                      static_cast<float>(m_points[p].z)};
        return out;
    }

    // One column and one row more than points: the seams have values of both sides.
    Array<float2> uvs() const
    {
        Array<float2> out(std::size_t(m_columns + 1) * (m_rows + 1));
        for (uint j = 0; j <= m_rows; ++j)
            for (uint i = 0; i <= m_columns; ++i)
                out[uv(i, j)] = {static_cast<float>(i) / static_cast<float>(m_columns),
                                 static_cast<float>(j) / static_cast<float>(m_rows)};
        return out;
    }

    // One normal per point; on a ridge that of the side of greater j, and after all those one per
    // ridge point for the other side.
    Array<float3> normals() const
    {
        Array<float3> out(m_points.size() + 2 * std::size_t(m_columns));
        for (uint j = 0; j < m_rows; ++j)
            for (uint i = 0; i < m_columns; ++i) {
                out[point(i, j)] = normalAt(i, j, isRidge(j) ? j : j + m_rows - 1, j + 1);
                if (isRidge(j))
                    out[normal(i, j + m_rows, true)] = normalAt(i, j, j + m_rows - 1, j);
            }
        return out;
    }

    // The normal of a corner at column i and row j; `isUpper` tells that its face lies below the row.
    uint normal(uint i, uint j, bool isUpper) const
    {
        if (!isUpper || !isRidge(j % m_rows))
            return point(i, j);
        const uint ridge = j % m_rows == 0 ? 0 : 1;
        return (m_rows + ridge) * m_columns + i % m_columns;
    }

    Array<float3> colors() const
    {
        Array<float3> out(m_points.size());
        for (uint j = 0; j < m_rows; ++j)
            for (uint i = 0; i < m_columns; ++i)
                out[point(i, j)] = {static_cast<float>(0.5 + 0.5 * m_ring[i].cos),
                                    static_cast<float>(0.5 + 0.5 * m_ring[i].sin),
                                    static_cast<float>(0.5 + 0.5 * m_tube[j].cos)};
        return out;
    }

private:
    bool isRidge(uint j) const { return j == 0 || j == m_rows / 2; }

    // Falls from 1 on a ridge to 0 an eighth of the tube away.
    double ridgeAt(uint j) const
    {
        const uint middle = m_rows / 2;
        const double half = middle;
        const double fromFirst = j <= half ? j : m_rows - static_cast<double>(j);
        const double fromSecond = std::fabs(j - half);
        const double height = 1 - 8.0 * std::fmin(fromFirst, fromSecond) / m_rows;
        return height > 0 ? height : 0;
    }

    double3 pointAt(uint i, uint j) const
    {
        const CosSin u = m_ring[i];
        const CosSin v = m_tube[j];
        const double lumps = m_ring[3 * i % m_columns].sin * m_tube[2 * j % m_rows].cos;
        const double radius = 0.38 + 0.05 * lumps + 0.06 * ridgeAt(j);
        const double fromAxis = 1 + radius * v.cos;
        return {fromAxis * u.cos, fromAxis * u.sin, radius * v.sin};
    }

    float3 normalAt(uint i, uint j, uint rowBefore, uint rowAfter) const
    {
        const double3 along =
            difference(m_points[point(i + 1, j)], m_points[point(i + m_columns - 1, j)]);
        const double3 around =
            difference(m_points[point(i, rowAfter)], m_points[point(i, rowBefore)]);
        return unit(cross(along, around));
    }

    uint m_columns, m_rows;
    std::vector<CosSin> m_ring, m_tube;
    std::vector<double3> m_points;
};

/// Collects faces over the torus, corner by corner.
class FaceList {
public:
    explicit FaceList(const Torus& torus) : m_torus(torus)
    {
        for (uint j = 0; j < torus.rows(); ++j) {
            throwIfCancelled();
            for (uint i = 0; i < torus.columns(); i += kCellsPerBlock)
                addBlock(i, j);
        }
    }

    Array<uint> offset{0};
    Array<uint> points, uvs, normals;  // per corner
    Array<String> materials;
    Array<int> ids;

private:
    // Fills the cells i to i + 3 of row j.
    void addBlock(uint i, uint j)
    {
        for (const uint piece : kBlocks[mixed(i, j) % std::size(kBlocks)]) {
            if (piece == kSplit)
                addTriangles(i, j);
            else if (piece == kPentagon)
                addPentagonAndTriangle(i, j);
            else if (piece > 0)
                addRow(i, piece, j);
            i += piece == kSplit ? 1 : piece == kPentagon ? 2 : piece;
        }
    }

    // `cells` cells merged into one face, whose every point on the way is a corner: no edge of a
    // neighbour ends in the middle of one of its edges.
    void addRow(uint i, uint cells, uint j)
    {
        for (uint k = 0; k <= cells; ++k)
            addCorner(i + k, j, false);
        for (uint k = cells + 1; k-- > 0;)
            addCorner(i + k, j + 1, true);
        closeFace(i, j);
    }

    void addTriangles(uint i, uint j)
    {
        addFace(i, j, {{0, 0}, {1, 0}, {1, 1}});
        addFace(i, j, {{0, 0}, {1, 1}, {0, 1}});
    }

    // Two cells, of which the first takes half of the second.
    void addPentagonAndTriangle(uint i, uint j)
    {
        addFace(i, j, {{0, 0}, {1, 0}, {2, 0}, {1, 1}, {0, 1}});
        addFace(i, j, {{2, 0}, {2, 1}, {1, 1}});
    }

    struct Step {
        uint columns, rows;
    };

    void addFace(uint i, uint j, std::initializer_list<Step> corners)
    {
        for (const Step& step : corners)
            addCorner(i + step.columns, j + step.rows, step.rows > 0);
        closeFace(i, j);
    }

    void addCorner(uint i, uint j, bool isUpper)
    {
        points.push_back(m_torus.point(i, j));
        uvs.push_back(m_torus.uv(i, j));
        normals.push_back(m_torus.normal(i, j, isUpper));
    }

    void closeFace(uint i, uint j)
    {
        const uint patch = mixed(16 * i / m_torus.columns(), 8 * j / m_torus.rows());
        ids.push_back(static_cast<int>(ids.size()));
        materials.push_back(kMaterialNames[patch % kMaterials]);
        offset.push_back(static_cast<uint>(points.size()));
    }

    const Torus& m_torus;
};

template <class T>
void addIndexed(Object& mesh, const String& name, const String& indexName, Array<T>&& values,
                Array<uint>&& indices)
{
    Geometry::addRangeGeoProperty(mesh, indexName, Geometry::sFaceVertexComp,
                                  makeMutable<Array<uint>>(std::move(indices)));
    Geometry::addDataGeoProperty<T>(mesh, name, indexName,
                                    makeMutable<Array<T>>(std::move(values)));
}

template <class T>
void addPlain(Object& mesh, const String& name, const String& component, Array<T>&& values)
{
    Geometry::addDataGeoProperty<T>(mesh, name, component,
                                    makeMutable<Array<T>>(std::move(values)));
}

MutablePtr<Object> demoMeshOf(uint resolution)
{
    if (resolution < kSmallest || resolution > kLargest)
        throw ArgumentError("resolution", "the demo mesh has a resolution of " +
                                              std::to_string(kSmallest) + " to " +
                                              std::to_string(kLargest) + ", not " +
                                              std::to_string(resolution));
    const Torus torus(resolution);
    FaceList faces(torus);
    MutablePtr<Object> mesh =
        Geometry::makeMesh(torus.positions(), std::move(faces.offset), std::move(faces.points));
    addPlain(*mesh, "color", Geometry::sPointComp, torus.colors());
    addPlain(*mesh, "material", Geometry::sFaceComp, std::move(faces.materials));
    addPlain(*mesh, "face_id", Geometry::sFaceComp, std::move(faces.ids));
    addIndexed(*mesh, "texcoord", "texcoord_index", torus.uvs(), std::move(faces.uvs));
    addIndexed(*mesh, "normal", "normal_index", torus.normals(), std::move(faces.normals));
    return mesh;
}

}  // namespace

MutablePtr<Object> makeDemoMesh(uint resolution)
{
    return guarded([&] { return demoMeshOf(resolution); });
}

}  // namespace TessaryMesh
