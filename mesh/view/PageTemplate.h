#pragma once

#include <string_view>

namespace TessaryMesh {

/// The page as it is built from the folder viewer, without what it shows.
struct PageTemplate {
    std::string_view beforeEncoding, beforeContents, afterContents;
};

PageTemplate pageTemplate();

}  // namespace TessaryMesh
