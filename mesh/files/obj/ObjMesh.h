#pragma once

#include "files/obj/ObjBlock.h"

#include <cstdint>
#include <vector>

namespace TessaryMesh {

/// How much of everything a file holds up to some place.
struct ObjCounts {
    std::uint64_t lines = 0;
    std::uint64_t values[kObjKinds] = {};
    std::uint64_t corners = 0, faces = 0;

    void add(const ObjBlock& block);
};

/// What a whole file holds, and where in it each block begins.
struct ObjFile {
    std::vector<ObjBlock> blocks;
    std::vector<ObjCounts> starts;  ///< one more than blocks: the last one is the file's end

    const ObjCounts& total() const { return starts.back(); }

    std::uint64_t colourCount() const;
    bool hasColours() const;
};

/// The mesh of a file whose indices all lead somewhere. Each block goes as soon as its arrays are
/// copied, so that memory for the file is never needed twice.
MutablePtr<Object> moveToMesh(ObjFile& file);

}  // namespace TessaryMesh
