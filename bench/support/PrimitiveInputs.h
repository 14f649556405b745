#pragma once

// Points to enclose and pairs of triangles and boxes, made from a seed.

#include "support/Inputs.h"

#include <string>

namespace Bench {

enum class Points { InABall, OnASphere, OnACube, OnAMesh };
constexpr Points kPointSets[] = {Points::InABall, Points::OnASphere, Points::OnACube,
                                 Points::OnAMesh};

/// "in a ball", and so on.
std::string nameOf(Points kind);

/// Of those on a mesh, neighbours in the array are neighbours in space.
Array<Korvane::Math::float3> makePoints(Points kind, std::size_t count);

struct TriangleAndBox {
    Korvane::Math::float3 a, b, c, center, half;
};

/// Triangles at about `distance` from boxes of about their size: most are apart from 2.5 on, most
/// overlap below 0.1.
Array<TriangleAndBox> trianglesAndBoxes(std::size_t count, float distance);

}  // namespace Bench
