#pragma once

// What this folder uses of the host, named once.

#include <Korvane/ElementTypes.h>
#include <Korvane/Geometry.h>
#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Any.h>
#include <Pelon/Array.h>
#include <Pelon/Ptr.h>
#include <Pelon/String.h>
#include <Pelon/TypeRep.h>

namespace TessaryMesh {

namespace Geometry = Korvane::Geometry;

using Korvane::Object;
using Korvane::Math::double3;
using Korvane::Math::float2;
using Korvane::Math::float3;
using Pelon::Any;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
using Pelon::uint;

/// No value, no neighbour, an unfilled slot.
inline constexpr uint kNone = 0xFFFFFFFF;

}  // namespace TessaryMesh
