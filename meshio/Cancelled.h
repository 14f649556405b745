#pragma once

namespace MeshIo {

/// Ends long work with the exception that a cancelled job ends with.
void throwIfCancelled();

}  // namespace MeshIo
