#pragma once

#include "view/PageArrays.h"
#include <TessaryMesh/Page.h>

#include <string>

namespace TessaryMesh {

/// A model as JSON for the page: its arrays by their places in `arrays`, its properties, and what is
/// wrong with it. Throws ArgumentError for an object without point positions, Cancelled.
std::string contentsOf(const PageModel& model, PageArrays& arrays);

}  // namespace TessaryMesh
