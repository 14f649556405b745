#pragma once

// Small helpers to write meshes and properties down as pictures, and to look at what came out.

#include <Korvane/Geometry.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>
#include <Tessary/Tessary.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>

namespace Pelon {

// Lets a failed expectation show strings and arrays.
inline void PrintTo(const String& text, std::ostream* out)
{
    *out << '"' << text.c_str() << '"';
}

template <class T>
void PrintTo(const Array<T>& array, std::ostream* out)
{
    *out << array.size() << " elements:";
    for (std::size_t i = 0; i < array.size() && i < 64; ++i)
        *out << ' ' << ::testing::PrintToString(array[i]);
}

}  // namespace Pelon

namespace TestSupport {

using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
using Tessary::uint;
namespace Geometry = Korvane::Geometry;
using Mode = Geometry::Common::DataInterpolationMode;

inline constexpr uint kNone = 0xFFFFFFFF;

template <class T>
Ptr<Array<T>> shared(std::initializer_list<T> values)
{
    return makeMutable<Array<T>>(values);
}

struct PolygonMesh {
    uint pointCount = 0;
    Array<uint> faceOffset{0};
    Array<uint> faceVertex;

    uint faceCount() const { return static_cast<uint>(faceOffset.size() - 1); }

    template <class Points>
    void addFace(const Points& points)
    {
        for (const uint point : points)
            faceVertex.push_back(point);
        faceOffset.push_back(static_cast<uint>(faceVertex.size()));
    }
};

using Faces = std::initializer_list<std::initializer_list<uint>>;

inline PolygonMesh polygonsOf(uint pointCount, Faces faces)
{
    PolygonMesh mesh;
    mesh.pointCount = pointCount;
    for (const auto& face : faces)
        mesh.addFace(face);
    return mesh;
}

/// An object of these polygons, with points at (i, 0, 0).
inline MutablePtr<Object> meshOf(const PolygonMesh& mesh)
{
    Array<float3> points(mesh.pointCount);
    for (uint i = 0; i < mesh.pointCount; ++i)
        points[i].x = static_cast<float>(i);
    return Geometry::makeMesh(std::move(points), mesh.faceOffset, mesh.faceVertex);
}
inline MutablePtr<Object> meshOf(uint pointCount, Faces faces)
{
    return meshOf(polygonsOf(pointCount, faces));
}

/// Polygons of 3 to `largest` corners over random points; nothing about it is a manifold.
inline PolygonMesh randomPolygons(std::uint32_t seed, uint faceCount, uint largest = 8)
{
    std::mt19937 random(seed);
    PolygonMesh mesh;
    mesh.pointCount = faceCount + 4;
    for (uint f = 0; f < faceCount; ++f) {
        Array<uint> face(3 + random() % (largest - 2));
        for (uint& point : face)
            point = random() % mesh.pointCount;
        mesh.addFace(face);
    }
    return mesh;
}

/// Adds the values of `name`, and "`name` range" through which elements of `component` address them.
template <class T>
void addIndexed(Object& mesh, const std::string& name, const String& component, Array<uint> indices,
                Ptr<Array<T>> values, const T& defaultValue = {}, Mode mode = Mode::Linear)
{
    const String range = name + " range";
    Geometry::addRangeGeoProperty(mesh, range, component,
                                  makeMutable<Array<uint>>(std::move(indices)));
    Geometry::addDataGeoProperty<T>(mesh, name, range, std::move(values), defaultValue, mode);
}

/// The data array of property `name`; a null pointer fails the test that looks at it.
template <class T>
Ptr<Array<T>> dataOf(const Object& geometry, const String& name)
{
    return Geometry::dataArray<T>(geometry, name);
}

/// The index array of range property `name`; a null pointer where there is none.
inline Ptr<Array<uint>> rangeOf(const Object& geometry, const String& name)
{
    const Ptr<Object> property = Geometry::getRangeGeoProperty(geometry, name);
    return property ? Geometry::getRangeGeoPropIndices(*property) : nullptr;
}

/// Entry `entry` of property `name`, as T.
template <class T>
T entryOf(const Object& geometry, const String& name, const String& entry)
{
    const auto property = geometry.getProperty(name);
    const auto* const object = property.template get<Ptr<Object>>();
    if (!object)
        throw std::runtime_error(std::string("no property ") + name.c_str());
    const auto value = (*object)->getProperty(entry);
    const T* const typed = value.template get<T>();
    if (!typed)
        throw std::runtime_error(std::string("no such entry of property ") + name.c_str());
    return *typed;
}

}  // namespace TestSupport
