#pragma once

#include "Session.h"

#include <Korvane/Math.h>
#include <Korvane/Object.h>

#include <optional>
#include <string>

/// What can be said about a mesh, as JSON.
namespace Cli {

/// The double that prints as briefly as the float does.
double briefly(float value);

struct BoundingBox {
    Korvane::Math::float3 low, high;
};

/// None for a mesh without points.
std::optional<BoundingBox> boundingBoxOf(const Korvane::Object& mesh);

Json vectorOf(const Korvane::Math::float3& v);

/// "points", "corners" and "faces".
Json countsOf(const Korvane::Object& mesh);

/// The names of the carried properties.
Json carriedNames(const Korvane::Object& mesh);

/// A valid mesh: counts, polygon sizes, edges, components, bounding box, area, properties and values
/// of the object.
Json factsOf(const Korvane::Object& mesh);

/// The same as lines for people.
std::string textOf(const Json& facts);

/// The most of it on one line.
std::string lineOf(const Json& facts);

/// A list of strings as "a, b, c".
std::string joined(const Json& strings);

/// "carried a, b, c" for a report with carried names as "properties".
std::string carriedText(const Json& facts);

}  // namespace Cli
