#pragma once

namespace TessaryMesh {

/// Ends long work with the exception that a cancelled job ends with.
void throwIfCancelled();

}  // namespace TessaryMesh
