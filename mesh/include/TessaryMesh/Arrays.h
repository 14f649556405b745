#pragma once

#include <Korvane/Geometry.h>
#include <TessaryMesh/Api.h>
#include <TessaryMesh/AttributeArrays.h>
#include <TessaryMesh/Errors.h>
#include <TessaryMesh/Names.h>
#include <TessaryMesh/View.h>

#include <cstddef>
#include <utility>

/// @file
/// Meshes of your own arrays, and the arrays of meshes.
///
///     std::vector<float> points{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
///     std::vector<std::uint32_t> corners{0, 1, 2, 3};
///     auto mesh = TessaryMesh::makeMesh(points, corners, TessaryMesh::Faces::quads());
///
/// Whose memory: arrays of the types that a mesh stores are not copied. The mesh reads them where they
/// are and never writes into them; what changes an array copies it first. Vectors that are moved in,
/// and memory given with an owner (View.h), live as long as anybody needs them. Whatever comes
/// without an owner has to outlive the mesh **and the meshes that operations make of it**, which share
/// its points and values; to change it meanwhile is to change them all.
///
/// What does not fit in is refused with ArrayError. Functions may be called from any thread, but a
/// mesh that one thread changes is that thread's alone.

namespace TessaryMesh {

/// Which corners make a face.
class Faces {
public:
    /// Every face has `corners` of them, one face after the other.
    static Faces ofSize(unsigned corners) { return {Kind::Size, corners, {}}; }
    /// Every face has three corners.
    static Faces triangles() { return ofSize(3); }
    /// Every face has four corners.
    static Faces quads() { return ofSize(4); }

    /// Face f has the corners offsets[f] up to offsets[f + 1]: one number more than there are faces,
    /// the first one 0, the last one the count of corners.
    static Faces fromOffsets(Numbers offsets) { return {Kind::Offsets, 0, std::move(offsets)}; }

    /// Face f has sizes[f] corners.
    static Faces fromSizes(Numbers sizes) { return {Kind::Sizes, 0, std::move(sizes)}; }

    /// Which of these it is.
    enum class Kind { Size, Offsets, Sizes };
    Kind kind() const noexcept { return m_kind; }                  ///< which of these it is
    unsigned size() const noexcept { return m_size; }              ///< of every face, or 0
    const Numbers& numbers() const noexcept { return m_numbers; }  ///< offsets or sizes, or none

private:
    Faces(Kind kind, unsigned size, Numbers numbers)
        : m_kind(kind), m_size(size), m_numbers(std::move(numbers))
    {}

    Kind m_kind;
    unsigned m_size;
    Numbers m_numbers;
};

/// A mesh of your arrays.
///
/// @param[in] points   three float or double numbers each
/// @param[in] corners  the points of the faces, face after face: integers of any size
/// @param[in] faces    how many of them belong to each face
/// @param[in] checks   whether the values are looked at
/// @returns    a mesh as Korvane/Geometry.h lays it out, without attributes
/// @memory     float points and 32-bit corners and offsets are used in place, signed ones too. Copied
///             are double points (rounded to float), integers of other sizes, and what is not aligned
///             for its type; offsets are made for faces of one size and for sizes
/// @throws ArrayError   where an array does not fit
/// @throws InvalidMesh  where checks find an error (Check.h lists them)
/// @complexity linear time for the checks; without them and without copies, constant time but for
///             the offsets that are made
TESSARY_MESH_API Pelon::MutablePtr<Korvane::Object> makeMesh(const Numbers& points,
                                                             const Numbers& corners,
                                                             const Faces& faces,
                                                             Checks checks = Checks::All);

/// Gives every point, corner or face of a mesh a value: `values[i]` is that of element i.
///
/// @param[in,out] mesh    gets a property `name` of that type, which replaces any earlier one;
///                        operations interpolate it where its type can be
/// @param[in]     name    none of the mesh's own
/// @param[in]     on      what has a value each
/// @param[in]     values  one for each element, of any element type of the host
///                        (Korvane/ElementTypes.h)
/// @memory     as for makeMesh(); strings are copied
/// @throws ArrayError  another count, a name of the mesh's own, no memory
template <class Row, class T = Internal::HostElementOf<Row>>
void addAttribute(Korvane::Object& mesh, const Pelon::String& name, Component on, Row&& values)
{
    auto array = Internal::hostArray<T>(View<T>(std::forward<Row>(values)), name);
    Internal::checkAttribute(mesh, name, on, array->size());
    Korvane::Geometry::addDataGeoProperty<T>(mesh, name, Internal::componentName(on),
                                             std::move(array));
}

/// The same for plain numbers, `width` of them for each element: 2 floats make a float2, 9 a
/// float3x3.
///
/// There are types of
///
///     width 1                                     bool, float, double, all integers
///     width 2, 3, 4 (a 2x2 matrix), 6 (2x3)       int and short
///     width 2, 3, 4, 6 (2x3), 9 (3x3), 16 (4x4)   float and double
///     width 3, 4                                  8-bit unsigned integers
///
/// @param[in,out] mesh    as above
/// @param[in]     name    as above
/// @param[in]     on      what has a value each
/// @param[in]     values  `width` for each element
/// @param[in]     width   0 for that of the values: 1, or the size of your own vectors
/// @throws ArrayError  as above, and for a width that no type has
TESSARY_MESH_API void addAttribute(Korvane::Object& mesh, const Pelon::String& name, Component on,
                                   const Numbers& values, unsigned width = 0);

/// The same with an index for each element, so that elements share values: that of element i is
/// `values[indices[i]]`, or none where the index is 0xFFFFFFFF.
///
/// @param[in,out] mesh     gets a property `name`, and its indices as a property of the name with
///                         "_index" behind it
/// @param[in]     name     none of the mesh's own
/// @param[in]     on       what has an index each
/// @param[in]     values   any number of them
/// @param[in]     indices  one for each element, integers of any size
/// @param[in]     checks   whether the indices are looked at
/// @throws ArrayError  as addAttribute(); with Checks::All also for indices that name no value
template <class Row, class T = Internal::HostElementOf<Row>>
void addIndexedAttribute(Korvane::Object& mesh, const Pelon::String& name, Component on,
                         Row&& values, const Numbers& indices, Checks checks = Checks::All)
{
    auto array = Internal::hostArray<T>(View<T>(std::forward<Row>(values)), name);
    const Pelon::String range =
        Internal::addIndices(mesh, name, on, indices, array->size(), checks);
    Korvane::Geometry::addDataGeoProperty<T>(mesh, name, range, std::move(array));
}

/// The same for plain numbers.
///
/// @param[in,out] mesh     as above
/// @param[in]     name     as above
/// @param[in]     on       what has an index each
/// @param[in]     values   `width` for each value
/// @param[in]     width    0 for that of the values
/// @param[in]     indices  one for each element, integers of any size
/// @param[in]     checks   whether the indices are looked at
/// @throws ArrayError  as above
TESSARY_MESH_API void addIndexedAttribute(Korvane::Object& mesh, const Pelon::String& name,
                                          Component on, const Numbers& values, unsigned width,
                                          const Numbers& indices, Checks checks = Checks::All);

/// The values of an attribute where they are. The view keeps them alive and unchanged, whatever
/// becomes of the mesh.
///
/// @throws ArrayError  where there is none with elements of T
template <class T>
View<T> view(const Korvane::Object& mesh, const Pelon::String& name)
{
    return View<T>(Internal::requiredArray<T>(mesh, name));
}

/// The indices of an attribute, one for each element; empty where its values are not indexed.
TESSARY_MESH_API View<Pelon::uint> indicesOf(const Korvane::Object& mesh,
                                             const Pelon::String& name);

/// The positions of the points, as view() shows them.
TESSARY_MESH_API View<Korvane::Math::float3> pointsOf(const Korvane::Object& mesh);
/// The point of each corner, as view() shows them.
TESSARY_MESH_API View<Pelon::uint> cornersOf(const Korvane::Object& mesh);
/// Where each face's corners begin, and the end, as view() shows them.
TESSARY_MESH_API View<Pelon::uint> offsetsOf(const Korvane::Object& mesh);

/// Takes the values of an attribute out of a mesh, which has no such attribute afterwards.
///
/// @param[in,out] mesh  keeps what it has whenever this throws
/// @param[in]     name  of the attribute
/// @memory     moved where nobody else holds the values and the memory is the mesh's own, else copied
/// @throws ArrayError  as view() does
template <class T>
Pelon::Array<T> take(Korvane::Object& mesh, const Pelon::String& name)
{
    Pelon::Ptr<Pelon::Array<T>> array = Internal::requiredArray<T>(mesh, name);
    if (!Internal::isOnlyHolder(mesh, name, array.useCount())) {
        const auto copy = Internal::copied(array->data(), array->size(), name);
        mesh.getPropertyForModification(name);
        return std::move(*copy);
    }
    mesh.getPropertyForModification(name);
    return std::move(*Pelon::toMutable(std::move(array)));
}

/// Takes the positions as take() does.
///
/// @param[in,out] mesh  what is left is no mesh any more
TESSARY_MESH_API Pelon::Array<Korvane::Math::float3> takePoints(Korvane::Object& mesh);

/// Takes the corners as take() does.
///
/// @param[in,out] mesh  what is left is no mesh any more
TESSARY_MESH_API Pelon::Array<Pelon::uint> takeCorners(Korvane::Object& mesh);

/// Takes the face offsets as take() does.
///
/// @param[in,out] mesh  what is left is no mesh any more
TESSARY_MESH_API Pelon::Array<Pelon::uint> takeOffsets(Korvane::Object& mesh);

}  // namespace TessaryMesh
