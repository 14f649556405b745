#pragma once

/// @file
/// Names of attributes to which readers and writers of files, and operations, give a meaning.

namespace TessaryMesh {

inline constexpr const char* kTexcoord = "texcoord";  ///< float2 or float3
inline constexpr const char* kNormal = "normal";      ///< float3
inline constexpr const char* kColor = "color";        ///< float3 or uchar4, on points
inline constexpr const char* kMaterial = "material";  ///< string, on faces

}  // namespace TessaryMesh
