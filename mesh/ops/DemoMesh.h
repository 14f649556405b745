#pragma once

#include "base/Host.h"

namespace TessaryMesh {

/// A closed mesh that shows everything a mesh file can carry: quads, triangles and larger polygons,
/// indexed corner UVs with a seam ("texcoord"), indexed corner normals ("normal"), a material name
/// ("material", string) and an id ("face_id", int) on faces, colours on points ("color", float3).
///
/// A lumpy torus with two ridges, on which the normals of a point's corners differ. Every edge is
/// shared by two faces that run along it in opposite directions; faces have 3, 4, 5, 6 or 8 corners.
/// The texture coordinates run from 0 to 1 both ways round.
///
/// `resolution` is the number of segments along the shorter way round, 8 to 8192 (else throws
/// std::invalid_argument); faces grow with its square: hundreds at 8, about a million at 512. The
/// same bits on every machine: only additions, multiplications, divisions and square roots are used.
MutablePtr<Object> makeDemoMesh(uint resolution);

}  // namespace TessaryMesh
