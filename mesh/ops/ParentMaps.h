#pragma once

#include <TessaryMesh/Operations.h>

namespace TessaryMesh {

/// The map whose element i is that of `earlier` which `later` names there: where what comes from the result
/// of an operation comes from in its source.
IndexArray through(const IndexArray& later, const IndexArray& earlier);

}  // namespace TessaryMesh
