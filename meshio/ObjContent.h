#pragma once

#include <Korvane/Geometry.h>
#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace MeshIo {

/// The value of a state statement for every face: a run of faces per statement.
template <class T>
class FaceState {
public:
    /// Holds for faces from `face` on.
    void set(std::size_t face, T value)
    {
        if (!m_runs.empty() && m_runs.back().first == face)
            m_runs.back().second = std::move(value);
        else
            m_runs.emplace_back(face, std::move(value));
    }

    /// Faces before the first statement get T(). Nothing is stored if there was no statement.
    void store(Korvane::Object& mesh, const char* name, std::size_t faceCount) const
    {
        if (m_runs.empty())
            return;
        const auto values = Pelon::makeMutable<Pelon::Array<T>>();
        values->resize(m_runs.front().first);
        for (std::size_t i = 0; i < m_runs.size(); ++i)
            values->resize(i + 1 < m_runs.size() ? m_runs[i + 1].first : faceCount,
                           m_runs[i].second);
        Korvane::Geometry::addDataGeoProperty<T>(mesh, name, Korvane::Geometry::sFaceComp, values);
    }

private:
    std::vector<std::pair<std::size_t, T>> m_runs;  // first face, value
};

/// The indices of one kind on the corners; none are kept until a corner has one.
class CornerIndices {
public:
    void set(std::size_t corner, Pelon::uint index)
    {
        if (m_indices.size() < corner)
            m_indices.resize(corner, kNone);
        m_indices.push_back(index);
    }

    /// Stores `values` as property `name`, indexed through "NAME_index".
    template <class T>
    void store(Korvane::Object& mesh, const std::string& name, Pelon::Array<T>&& values,
               std::size_t cornerCount)
    {
        using namespace Korvane::Geometry;
        m_indices.resize(cornerCount, kNone);
        addRangeGeoProperty(mesh, name + "_index", sFaceVertexComp,
                            Pelon::makeMutable<Pelon::Array<Pelon::uint>>(std::move(m_indices)));
        addDataGeoProperty<T>(mesh, name, name + "_index",
                              Pelon::makeMutable<Pelon::Array<T>>(std::move(values)));
    }

private:
    static constexpr Pelon::uint kNone = 0xFFFFFFFF;

    Pelon::Array<Pelon::uint> m_indices;
};

/// What an OBJ file has told so far.
struct ObjContent {
    Pelon::Array<Korvane::Math::float3> points, colours, normals;
    Pelon::Array<Korvane::Math::float2> texcoords;
    Pelon::Array<Korvane::Math::float3> wideTexcoords;  // instead of these, once a w occurs
    Pelon::Array<float> weights;                        // empty until one is not 1
    Pelon::Array<Pelon::uint> faceOffset{0}, corners;
    CornerIndices texcoordIndices, normalIndices;
    FaceState<Pelon::String> object, group, material;
    FaceState<Pelon::uint> smoothing;
    std::unordered_set<Pelon::String> knownLibraries;
    std::string libraries;  // each of them once, in the order of the file
    std::uint64_t colourCount = 0;
    bool hasWideTexcoords = false;

    std::size_t faceCount() const { return faceOffset.size() - 1; }
    bool hasColours() const { return !points.empty() && colours.size() == points.size(); }

    /// Colour and weight of the point added last.
    void addColour(const Korvane::Math::float3& colour);
    void addWeight(float weight);

    void addTexcoord(const Korvane::Math::float3& texcoord, bool hasW);
    void addLibrary(const Pelon::String& name);
};

/// The mesh of a whole file; leaves `content` empty.
Pelon::MutablePtr<Korvane::Object> moveToMesh(ObjContent& content);

}  // namespace MeshIo
