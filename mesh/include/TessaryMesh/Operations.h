#pragma once

#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>
#include <TessaryMesh/Errors.h>
#include <TessaryMesh/NamedArrays.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

/// @file
/// Operations on whole meshes: the kernels, with every attribute carried along and a map from each
/// element of the result to the element of the source that it comes from.
///
/// A mesh is an object as Korvane/Geometry.h lays it out, without errors (see Check.h): operations
/// trust their callers with that, and say so where they look themselves. No operation changes its
/// source; arrays that stay as they are are shared. Results are the same bits for any number of
/// threads. All operations throw Cancelled where the job of the calling thread was cancelled, and
/// OutOfMemory.

namespace TessaryMesh {

/// Which properties an operation carries: all of them, or those of the given names, which may name
/// properties that a mesh lacks.
class Carry {
public:
    Carry() = default;  ///< all
    /// The properties of these names.
    Carry(std::initializer_list<Pelon::String> names)  // NOLINT(google-explicit-constructor)
        : m_isAll(false), m_names(names)
    {}
    /// The properties of these names.
    explicit Carry(Pelon::Array<Pelon::String> names) : m_isAll(false), m_names(std::move(names)) {}

    static Carry all() { return Carry(); }                                ///< all properties
    static Carry none() { return Carry(Pelon::Array<Pelon::String>()); }  ///< no property

    bool isAll() const { return m_isAll; }                                ///< whether all are
    const Pelon::Array<Pelon::String>& names() const { return m_names; }  ///< unless all are

private:
    bool m_isAll = true;
    Pelon::Array<Pelon::String> m_names;
};

/// Every property of `mesh` that can be asked for: data properties other than the topology, and render
/// settings; in the object's order. The offsets of a list go with the list and are not named.
TESSARY_MESH_API Pelon::Array<Pelon::String> carriedPropertyNames(const Korvane::Object& mesh);

/// Indices that several may share.
using IndexArray = Pelon::Ptr<Pelon::Array<Pelon::uint>>;

/// Where the elements of a result come from. A map that an operation does not make is null. Source
/// elements are counted from 0, corners and fan triangles through the whole mesh.
struct ParentMaps {
    IndexArray face;  ///< of each face or sample of the result: the face that it lies on
    IndexArray
        corner;  ///< of each corner (triangulate) or each face (quads): a corner of the source
    IndexArray triangle;  ///< of each face or sample: the triangle of the source's fans

    /// Those that there are, as "face", "corner" and "triangle".
    TESSARY_MESH_API NamedArrays arrays() const;
};

/// What every operation that makes a mesh returns.
struct Result {
    Pelon::MutablePtr<Korvane::Object> mesh;  ///< a mesh or a point cloud of its own
    ParentMaps parents;                       ///< where its elements come from
    std::vector<std::string> warnings;        ///< one line per property that could not be carried
};

/// How a face becomes triangles that is not convex and that the fan around its first corner leaves (see
/// concaveFaces() in Check.h).
enum class Concave {
    Fan,   ///< as every other face
    Split  ///< into triangles that are the face: its ears are clipped, one after the other
};

/// Splits every face into triangles: the fan around its first corner, or others for faces that that
/// does not fit. A face has the same number of triangles either way.
///
/// Points keep their order. Indexed properties stay indexed: their values are shared,
/// their index arrays follow the corners, and an index array that several properties use is carried
/// once. Lists that belong to points are shared. A list or any other property on a component of its
/// own has no rule by which it follows faces onto triangles; a warning says that it is left out.
/// Values of the object itself (not geometry properties), such as "material_library", are always
/// carried, except "subdivision_tags" that name faces. A mesh without faces keeps its points. A dual table of the mesh (see addDual()) is none of
/// the triangles and is left out, with a warning.
///
/// @param[in] mesh   without errors
/// @param[in] carry  the properties to carry
/// @param[in] concave  what becomes of concave faces
/// @returns    parents: face of each triangle; corner of each corner of a triangle
/// @throws InvalidMesh  where faces cannot be split
/// @complexity linear, parallel
TESSARY_MESH_API Result triangulate(const Korvane::Object& mesh, const Carry& carry = {},
                                    Concave concave = Concave::Fan);

/// Splits the concave faces of a mesh into triangles, and leaves the others as they are: what the
/// operations below do not do themselves. Everything follows as it does for triangulate().
///
/// @returns    parents: face of each face; corner of each corner; none where all faces stay as they are
/// @throws InvalidMesh  where faces cannot be split
/// @complexity linear, parallel
TESSARY_MESH_API Result splitConcaveFaces(const Korvane::Object& mesh, const Carry& carry = {});

/// How makeQuads() cuts.
struct QuadOptions {
    /// Edges are creased at which the normals of two faces differ by more than so many degrees, 0 to
    /// 180. The normal of a polygon is the mean over its area, so a face that is not planar or not
    /// convex has one, too. A face without area has none and creases nothing; nor does a boundary.
    std::optional<double> creaseAngle;

    /// Half-edges are creased whose corner has in this property the value true, a number other than 0
    /// (uchar), or a weight below the largest finite float. Empty for none; it goes before the angle.
    std::string creaseProperty;

    /// Where an edge is cut: the share of its lower-numbered point, 0 to 1.
    float edgeWeight = 0.5f;

    /// Where a triangle is cut: the shares of its three corners; they add up to 1.
    float innerWeights[3] = {1.0f / 3, 1.0f / 3, 1.0f / 3};

    /// How far the two points of a creased edge move apart, as a share of the edge, 0 to 1. An error
    /// where nothing above asks for creases.
    float gap = 0;

    /// Whether edges along which two faces run in one direction are cut once for each face. Without
    /// it a mesh with such edges is refused.
    bool splitEdges = false;

    /// How faces become triangles that are not convex. They count as one face for creases either way.
    Concave concave = Concave::Fan;
};

/// What makeQuads() returns.
struct QuadResult : Result {
    std::uint64_t edges = 0;         ///< of the fan triangles
    std::uint64_t creasedEdges = 0;  ///< of these
    std::uint64_t splitEdges = 0;    ///< cut once for each face
};

/// Splits the fan triangles of a mesh into three quads each, around an inner point.
///
/// Points keep their order; new ones follow, on the edges and then inside the triangles, as
/// computeQuadMesh() numbers them. A creased edge gets two points, one for each end. A mesh without
/// faces keeps its points.
///
/// Properties follow as interpolatePropertiesToCutMesh() says, at the same weights as the positions,
/// with two differences: index seams of corners are kept, and what lies between corners of which one
/// has no value (the index 0xFFFFFFFF) has none. Lists, properties of other components and chains of
/// indices have no rule; a warning says that they are left out. Values of the object itself are always
/// carried.
///
/// @param[in] mesh     without errors
/// @param[in] options  how to cut
/// @param[in] carry    the properties to carry
/// @returns    parents: of each quad the face and the corner that it lies at, and the triangle
/// @throws InvalidMesh    with the first places, where two faces run along an edge in one direction
///                        ("same-direction") or the result is too large for its indices ("too-large")
/// @throws ArgumentError  for options outside their range and a crease property that does not fit
TESSARY_MESH_API QuadResult makeQuads(const Korvane::Object& mesh, const QuadOptions& options = {},
                                      const Carry& carry = {});

/// Points on the fan triangles of a mesh, no two closer than the distance, grouped by triangle.
struct SurfaceSamples {
    Pelon::Ptr<Pelon::Array<Korvane::Math::float3>> positions;  ///< one for each
    Pelon::Ptr<Pelon::Array<float>> weights;  ///< 3 for each: of the triangle's corners
    IndexArray triangles;                     ///< of the triangle that holds each
    float distance = 0;                       ///< that they keep

    /// How many there are.
    std::size_t count() const { return positions ? positions->size() : 0; }
};

/// The surface of a mesh, ready for poissonSampleTriMesh().
///
/// What the kernel would answer with nothing, with nonsense or by exhausting the machine is refused
/// here in words that say what to do.
class TESSARY_MESH_API SampledSurface {
public:
    /// Measures the fan triangles.
    ///
    /// @throws InvalidMesh  where there are no faces, no area, or coordinates so large or so small that
    ///                      single precision does not hold the area
    explicit SampledSurface(const Korvane::Object& mesh);

    /// Of all triangles.
    double area() const { return m_area; }

    /// Of the smallest sphere around all points.
    float boundingRadius() const;

    /// The smallest distance that this machine can sample with. It grows with the area: candidates
    /// are numbered in 32 bits and take memory.
    float leastDistance() const;

    /// The share of the distance that rounding of the coordinates may amount to.
    double roundingShare(float distance) const;

    /// Samples by distance.
    ///
    /// @throws ArgumentError  for a distance that is no number above zero, too small for the area, or
    ///                        too small for coordinates so far from the origin
    /// @throws OutOfMemory
    SurfaceSamples sample(float distance, Pelon::uint seed) const;

    /// Looks for the distance that yields `count` samples until it is met within 2 %, or the search
    /// ends.
    ///
    /// @returns    the nearest that was found
    /// @throws ArgumentError  as sample() does, and for a count of none
    SurfaceSamples sampleCount(std::uint64_t count, Pelon::uint seed) const;

private:
    double candidates(double distance) const;
    void checkDistance(float distance) const;
    double distanceForCount(std::uint64_t count) const;  // about

    Pelon::MutablePtr<Korvane::Object> m_triangles;
    double m_area = 0;
    double m_farthest = 0;  // coordinate of a corner from the origin
};

/// The samples of a mesh as a point cloud, with where they lie and the mesh's values.
///
/// Every sample is a point. Its own properties, the first three only `withPlaces`:
///
///     weight       float3: the weights of the triangle's corners, in order; they add up to 1
///     face_id      uint: the face of `mesh`
///     triangle_id  uint: the fan triangle
///     normal       float3: that of the triangle, of length 1; only where no property of that name is
///                  carried, nor nx, ny and nz
///
/// The mesh's properties follow under their names, with one value for each sample, in the order of
/// `mesh`; where a name above is taken it becomes mesh_NAME or the like, which a warning says. By
/// component:
///
/// - point, corner: float, double and their vectors are blended, (v1 w1 + v2 w2) + v0 w0 as the
///   positions are, so blended normals are a little short of length 1. Other types, and what has
///   interpolation mode None, are picked from the corner of the largest weight, of equal ones from
///   the first
/// - face: the value of the face
///
/// Indexed properties come out plain; where a value is missing, the default stands, which a warning
/// says. Lists, properties of other components and chains of indices have no rule; a warning says that
/// they are left out. Values of the object itself are always carried.
///
/// @param[in] mesh        that the samples lie on
/// @param[in] samples     of a SampledSurface of this mesh
/// @param[in] carry       the properties to carry
/// @param[in] withPlaces  whether the samples say where they lie
/// @param[in] parents     of the mesh, where splitConcaveFaces() made it: then the faces that the samples
///                        lie on are those of its source
/// @returns    parents: face and triangle of each sample
/// @complexity parallel, linear in the samples and the mesh
TESSARY_MESH_API Result makeSampleCloud(const Korvane::Object& mesh, const SurfaceSamples& samples,
                                        const Carry& carry = {}, bool withPlaces = true,
                                        const ParentMaps& parents = {});

/// How sample() samples.
struct SampleOptions {
    float distance = 0;       ///< no two samples are closer; 0 for a number of samples instead
    std::uint64_t count = 0;  ///< about so many samples; 0 for a distance instead
    Pelon::uint seed = 0;     ///< of every random decision
    bool withPlaces = true;   ///< see makeSampleCloud()
    Concave concave = Concave::Fan;  ///< how faces become triangles that are not convex
};

/// What sample() returns.
struct SampleResult : Result {
    float distance = 0;  ///< that the samples keep
    double area = 0;     ///< of the surface
};

/// SampledSurface and makeSampleCloud() in one.
///
/// @param[in] mesh     without errors
/// @param[in] options  the distance or the count, and more
/// @param[in] carry    the properties to carry
/// @throws ArgumentError  unless just one of distance and count is given, and as SampledSurface does
/// @throws InvalidMesh    as SampledSurface does
TESSARY_MESH_API SampleResult sample(const Korvane::Object& mesh, const SampleOptions& options,
                                     const Carry& carry = {});

/// The smallest distance between two of the points; none for fewer than two.
///
/// Every pair that could be the nearest is measured, in double precision, so the result is exact up
/// to that rounding whatever `guess` is.
///
/// @param[in] points  with finite coordinates
/// @param[in] guess   near the result finds it in linear time; one far below it, such as 0, costs
///                    further passes, one far above it compares more pairs
TESSARY_MESH_API std::optional<double> smallestDistance(
    const Pelon::Array<Korvane::Math::float3>& points, double guess);

/// A cell of a grid of cubes of size h: it reaches from x h to (x + 1) h, and so on.
struct Cell {
    std::int32_t x;  ///< along the first axis
    std::int32_t y;  ///< along the second
    std::int32_t z;  ///< along the third
};

/// The cells that a mesh's faces touch, by the overlap test of triangles and boxes, once each, in
/// ascending order of x, then y, then z.
///
/// Faces count as the fans of triangles that they split into. The grid begins at the origin, so that
/// the cells of several meshes fit together. A face that just touches a cell counts, as far as
/// rounding in float goes.
///
/// @param[in] mesh      without errors
/// @param[in] cellSize  of the cubes
/// @throws ArgumentError  with what to do, where the cell size is not above zero and finite, or the
///                        grid would be more than 2,097,152 cells long on a side or begin further than
///                        2^30 cells from the origin
TESSARY_MESH_API Pelon::Array<Cell> touchedCells(const Korvane::Object& mesh, double cellSize);

/// A mesh of a closed cube of six quads for each cell, faces turned outwards.
///
/// @param[in] cells     any
/// @param[in] cellSize  of the cubes
/// @throws ArgumentError  where 32-bit indices cannot name the corners, and for cell sizes as
///                        touchedCells() does
TESSARY_MESH_API Pelon::MutablePtr<Korvane::Object> makeCubes(const Pelon::Array<Cell>& cells,
                                                              double cellSize);

/// The triangles of a mesh and what lies beside them, as the kernels lay it out (see
/// Tessary/Topology.h). 0xFFFFFFFF stands for none.
struct TriangleTables {
    IndexArray faceVertex;         ///< 3 points per triangle
    IndexArray triEdges;           ///< 2 corners per edge; null where it was not asked for
    IndexArray adjacentTri;        ///< 3 triangles per triangle
    IndexArray dualFaceOffset;     ///< where the corners of each point begin, and the end
    IndexArray dualFaceVertex;     ///< the corners of each point
    IndexArray face;               ///< the face of each triangle
    std::uint64_t splitEdges = 0;  ///< edges that are in triEdges once for each face

    /// "face_vertex", "tri_edges" if there is one, "face_vertex_adjacent_tri", "dual_face_offset" and
    /// "dual_face_vertex"; rows of 3, 2 and 3, and two plain lists.
    TESSARY_MESH_API NamedArrays arrays() const;
};

/// How makeTriangleTables() takes edges.
struct TableOptions {
    /// Whether edges along which two faces run in one direction are in the edge table once for each face,
    /// as boundaries. Without it a mesh with such edges is refused.
    bool splitEdges = false;

    /// Whether an edge table is made at all. Nothing else needs one, so without it no mesh is refused.
    bool withEdges = true;
};

/// Makes the tables of a mesh's fan triangles. Neighbours run along their common edge in opposite
/// directions; of several the one with the lowest corner counts.
///
/// @param[in] mesh     without errors
/// @param[in] options  what becomes of edges that fit no table
/// @throws InvalidMesh  with the first places, where there is no edge table ("same-direction")
TESSARY_MESH_API TriangleTables makeTriangleTables(const Korvane::Object& mesh,
                                                   const TableOptions& options = {});

/// A closed mesh that shows everything a mesh file can carry: quads, triangles and larger polygons,
/// indexed corner UVs with a seam ("texcoord"), indexed corner normals ("normal"), a material name
/// ("material", string) and an id ("face_id", int) on faces, colours on points ("color", float3).
///
/// A lumpy torus with two ridges, on which the normals of a point's corners differ. Every edge is
/// shared by two faces that run along it in opposite directions; faces have 3, 4, 5, 6 or 8 corners.
/// The texture coordinates run from 0 to 1 both ways round. The same bits on every machine: only
/// additions, multiplications, divisions and square roots are used.
///
/// @param[in] resolution  the number of segments along the shorter way round, 8 to 8192; faces grow
///                        with its square: hundreds at 8, about a million at 512
/// @throws ArgumentError  for any other resolution
TESSARY_MESH_API Pelon::MutablePtr<Korvane::Object> makeDemoMesh(Pelon::uint resolution);

}  // namespace TessaryMesh
