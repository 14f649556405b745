#pragma once

#include <Korvane/Object.h>

namespace TessaryPython {

/// Whether a mesh that once was without errors still is, when somebody may have written into its arrays
/// meanwhile. Of what validateMesh() looks at only what writing can change: corners, offsets,
/// coordinates and indices of properties. Parallel, at the speed of memory: a tenth of the time.
bool stillHolds(const Korvane::Object& mesh);

}  // namespace TessaryPython
