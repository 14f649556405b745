#pragma once

#include "base/Host.h"
#include "files/gltf/GltfModel.h"

namespace TessaryMesh {

/// Where a node puts what hangs on it: x' = M x + t, in double precision and in a fixed order.
struct GltfTransform {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double t[3] = {0, 0, 0};

    /// That of a node alone; of no transformation where its numbers are of the wrong count.
    static GltfTransform of(const tinygltf::Node& node);

    /// First `inner`, then this.
    GltfTransform operator*(const GltfTransform& inner) const;

    bool isIdentity() const;
    bool isMirrored() const;

    float3 point(const float3& p) const;
    float3 direction(const float3& d) const;
    float3 normal(const float3& n) const;  ///< of length 1; zeros stay
};

}  // namespace TessaryMesh
