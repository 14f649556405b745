#pragma once

// The one place that includes host headers and names what the library uses of them.

#include <KOR/ExceptionMessage.h>
#include <Korvane/Geometry.h>
#include <Korvane/Math.h>
#include <Korvane/Object.h>
#include <Pelon/Any.h>
#include <Pelon/Array.h>
#include <Pelon/Job.h>
#include <Pelon/Ptr.h>
#include <Pelon/RuntimeServices.h>
#include <Pelon/String.h>

namespace Tessary {

namespace Geometry = Korvane::Geometry;

using Korvane::Object;
using Korvane::Math::float3;
using Pelon::Any;
using Pelon::Array;
using Pelon::makeMutable;
using Pelon::MutablePtr;
using Pelon::Ptr;
using Pelon::String;
using Pelon::StringView;
using Pelon::uint;

}  // namespace Tessary
