#pragma once

#include <Korvane/Object.h>
#include <TessaryMesh/Errors.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// @file
/// What is wrong with a mesh and where, and facts about it. A mesh is an object as
/// Korvane/Geometry.h lays it out. Faces, points and corners are counted from 0, corners through
/// the whole mesh.

namespace TessaryMesh {

/// Checks whatever the kernels trust their callers with.
///
/// Codes of errors:
///
///     topology-missing     no array of points, face offsets or corners
///     topology-type        one of these is not of its type
///     length-mismatch      an array whose length does not match its component
///     offset-order         face offsets that do not start at 0, decrease or do not end at the corner
///                          count
///     index-out-of-range   corners that name no point
///     small-face           faces of fewer than three corners
///     point-not-finite     points with a coordinate that is infinite or not a number
///     property-index       an index array with an index outside its values; 0xFFFFFFFF, no value, is
///                          allowed
///     circular-target      a property whose targets lead round in a circle
///     too-large            more corners than 32-bit indices of the triangulation can name
///
/// Code of a warning:
///
///     repeated-corner      corners that repeat a point of their face
///
/// @param[in] mesh  whatever it holds, nothing is read outside its arrays
/// @complexity linear in the size of the mesh
TESSARY_MESH_API ValidationReport validateMesh(const Korvane::Object& mesh);

/// What is unusual about the edges of a mesh. Codes, all of them warnings:
///
///     same-direction      edges along which two faces run in one direction, those for which
///                         computeTriEdges() makes no table
///     non-manifold-edge   edges of more than two faces
///     diagonal-direction  inner edges of faces, where these are split into triangles, for which
///                         computeTriEdges() makes no table
///
/// @param[in] mesh  without errors
/// @throws Cancelled
/// @complexity near linear time
TESSARY_MESH_API std::vector<Problem> edgeWarnings(const Korvane::Object& mesh);

/// The faces that their fans do not fit. Operations split a face into the fan of triangles around its
/// first corner, which leaves a face that is not convex where that corner does not see all of it: then
/// triangles cover ground outside and each other. See `Concave` in Operations.h for another way.
///
/// A face counts where its fan covers more ground than itself, seen along its normal, whatever its bends: by
/// more than what rounding of its points may do, and not only slightly. One whose fan covers up to a
/// thirty-second of its area too much, while its corners turn inwards by no more than about 7
/// degrees in all, is as good as convex, as faces along a curve mostly are. A face that crosses itself has a
/// kind of its own: no triangles fit it.
struct ConcaveFaces {
    Problem concave;       ///< "concave-face", a warning; its count may be 0
    Problem selfCrossing;  ///< "self-crossing-face", a warning; its count may be 0
    double area = 0;       ///< of the concave faces
    double fanArea = 0;    ///< that the triangles of their fans cover
    std::uint64_t slight =
        0;  ///< faces that fans leave slightly; what splits concave faces splits them, too

    /// Those of the two that occur.
    TESSARY_MESH_API std::vector<Problem> problems() const;
};

/// Finds them in a mesh without errors. Linear time but for concave faces, which are split, and
/// looked through for sides that cross.
///
/// @throws Cancelled
TESSARY_MESH_API ConcaveFaces concaveFaces(const Korvane::Object& mesh);

/// What holds a mesh together: counts of its edges and of the pieces that they make.
///
/// An edge joins two points that follow each other in a face; a point that a face names twice in a
/// row makes none. Components are faces that hang together by common points. Points of no face
/// belong to nothing here.
struct MeshShape {
    std::uint64_t edges = 0;               ///< between two points, each once
    std::uint64_t boundaryEdges = 0;       ///< of one face
    Problem sameDirection;                 ///< as edgeWarnings() has it; its count may be 0
    Problem nonManifold;                   ///< the same
    std::uint64_t nonManifoldPoints = 0;   ///< at which faces meet that no edges there join
    std::uint64_t unusedPoints = 0;        ///< of no face
    std::uint64_t components = 0;          ///< sets of faces that hang together
    std::int64_t eulerCharacteristic = 0;  ///< points of faces - edges + faces
    std::uint64_t least = 0;               ///< edges at a point of a face
    std::uint64_t most = 0;                ///< edges at a point of a face
    bool isClosed = false;                 ///< there are edges, none of them a boundary
    std::optional<std::uint64_t> genus;    ///< of all components together; only of a closed and
                                           ///< consistently oriented manifold
};

/// Measures a mesh.
///
/// @param[in] mesh  without errors
/// @throws Cancelled
/// @complexity near linear time
TESSARY_MESH_API MeshShape shapeOf(const Korvane::Object& mesh);

/// The sum of the areas of a mesh's faces, exact (up to rounding in double) for planar ones, concave
/// ones too.
///
/// @param[in] mesh  without errors
/// @complexity linear time
TESSARY_MESH_API double areaOf(const Korvane::Object& mesh);

/// A property of a mesh, as a list of them would show it.
struct PropertyFacts {
    std::string name;       ///< of the property
    std::string type;       ///< of an element: "float3"; empty for one that the host does not list
    std::string component;  ///< "point", "corner", "face", or the name of another component
    std::string through;    ///< the property whose indices lead to the values; empty for none
    std::uint64_t elements = 0;  ///< of the component
    std::uint64_t values = 0;    ///< stored
};

/// The data properties of a mesh other than its topology, in the object's order.
TESSARY_MESH_API std::vector<PropertyFacts> propertiesOf(const Korvane::Object& mesh);

}  // namespace TessaryMesh
