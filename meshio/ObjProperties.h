#pragma once

#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace MeshIo {

/// The values of a property and how the elements of its component find theirs.
template <class T>
struct ElementValues {
    Pelon::Ptr<Pelon::Array<T>> values;
    Pelon::Ptr<Pelon::Array<Pelon::uint>> indices;  ///< empty for a plain property

    static constexpr Pelon::uint kNone = 0xFFFFFFFF;

    /// Where element `i` has its value, kNone if it has none.
    Pelon::uint indexOf(std::size_t i) const
    {
        const Pelon::uint index = indices ? (*indices)[i] : static_cast<Pelon::uint>(i);
        return index < values->size() ? index : kNone;
    }

    T valueOf(std::size_t i) const
    {
        const Pelon::uint index = indexOf(i);
        return index == kNone ? T() : (*values)[index];
    }
};

/// Values that the corners of faces name: each corner its own, or that of its point.
template <class T>
struct CornerValues : ElementValues<T> {
    bool onPoints = false;

    Pelon::uint indexAt(std::size_t corner, Pelon::uint point) const
    {
        return this->indexOf(onPoints ? point : corner);
    }
};

/// The properties of a mesh that OBJ can hold, and a warning for each one that it cannot.
struct ObjProperties {
    Pelon::Ptr<Pelon::Array<Korvane::Math::float3>> points;
    Pelon::Ptr<Pelon::Array<Pelon::uint>> faceOffset, faceVertex;  ///< both empty: a point cloud

    std::optional<ElementValues<Korvane::Math::float3>> colour;
    std::optional<ElementValues<float>> weight;
    std::optional<CornerValues<Korvane::Math::float2>> texcoord;
    std::optional<CornerValues<Korvane::Math::float3>> wideTexcoord, normal;
    std::optional<ElementValues<Pelon::String>> object, group, material;
    std::optional<ElementValues<Pelon::uint>> smoothing;
    std::optional<Pelon::String> materialLibrary;

    std::vector<std::string> warnings;

    std::size_t faceCount() const
    {
        return !faceOffset || faceOffset->empty() ? 0 : faceOffset->size() - 1;
    }
};

/// `output` stands for the file in messages. Throws FileError for a mesh without points.
ObjProperties findObjProperties(const Korvane::Object& mesh, const std::string& output);

}  // namespace MeshIo
