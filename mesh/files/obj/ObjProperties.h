#pragma once

#include "base/Host.h"
#include "files/PropertySearch.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TessaryMesh {

/// Values that the corners of faces name: each corner its own, or that of its point.
template <class T>
struct CornerValues : ElementValues<T> {
    bool onPoints = false;

    uint indexAt(std::size_t corner, uint point) const
    {
        return this->indexOf(onPoints ? point : corner);
    }
};

/// The properties of a mesh that OBJ can hold, and a warning for each one that it cannot.
struct ObjProperties {
    Ptr<Array<float3>> points;
    Ptr<Array<uint>> faceOffset, faceVertex;  ///< both empty: a point cloud

    std::optional<ElementValues<float3>> colour;
    std::optional<ElementValues<float>> weight;
    std::optional<CornerValues<float2>> texcoord;
    std::optional<CornerValues<float3>> wideTexcoord, normal;
    std::optional<ElementValues<String>> object, group, material;
    std::optional<ElementValues<uint>> smoothing;
    std::optional<String> materialLibrary, tags;

    std::vector<std::string> warnings;

    std::size_t faceCount() const
    {
        return !faceOffset || faceOffset->empty() ? 0 : faceOffset->size() - 1;
    }
};

/// Of an object that has points.
ObjProperties findObjProperties(const Object& mesh);

}  // namespace TessaryMesh
