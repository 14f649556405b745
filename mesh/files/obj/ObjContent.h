#pragma once

#include "base/Host.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace TessaryMesh {

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
    void store(Object& mesh, const char* name, std::size_t faceCount) const
    {
        if (m_runs.empty())
            return;
        const auto values = makeMutable<Array<T>>();
        values->resize(m_runs.front().first);
        for (std::size_t i = 0; i < m_runs.size(); ++i)
            values->resize(i + 1 < m_runs.size() ? m_runs[i + 1].first : faceCount,
                           m_runs[i].second);
        Geometry::addDataGeoProperty<T>(mesh, name, Geometry::sFaceComp, values);
    }

private:
    std::vector<std::pair<std::size_t, T>> m_runs;  // first face, value
};

/// The indices of one kind on the corners; none are kept until a corner has one.
class CornerIndices {
public:
    void set(std::size_t corner, uint index)
    {
        if (m_indices.size() < corner)
            m_indices.resize(corner, kNone);
        m_indices.push_back(index);
    }

    /// Stores `values` as property `name`, indexed through "NAME_index".
    template <class T>
    void store(Object& mesh, const std::string& name, Array<T>&& values, std::size_t cornerCount)
    {
        m_indices.resize(cornerCount, kNone);
        Geometry::addRangeGeoProperty(mesh, name + "_index", Geometry::sFaceVertexComp,
                                      makeMutable<Array<uint>>(std::move(m_indices)));
        Geometry::addDataGeoProperty<T>(mesh, name, name + "_index",
                                        makeMutable<Array<T>>(std::move(values)));
    }

private:
    Array<uint> m_indices;
};

/// What an OBJ file has told so far.
struct ObjContent {
    Array<float3> points, colours, normals;
    Array<float2> texcoords;
    Array<float3> wideTexcoords;  // instead of these, once a w occurs
    Array<float> weights;         // empty until one is not 1
    Array<uint> faceOffset{0}, corners;
    CornerIndices texcoordIndices, normalIndices;
    FaceState<String> object, group, material;
    FaceState<uint> smoothing;
    std::unordered_set<String> knownLibraries;
    std::string libraries;  // each of them once, in the order of the file
    std::uint64_t colourCount = 0;
    bool hasWideTexcoords = false;

    std::size_t faceCount() const { return faceOffset.size() - 1; }
    bool hasColours() const { return !points.empty() && colours.size() == points.size(); }

    /// Colour and weight of the point added last.
    void addColour(const float3& colour);
    void addWeight(float weight);

    void addTexcoord(const float3& texcoord, bool hasW);
    void addLibrary(const String& name);
};

/// The mesh of a whole file; leaves `content` empty.
MutablePtr<Object> moveToMesh(ObjContent& content);

}  // namespace TessaryMesh
