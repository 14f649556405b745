#pragma once

#include "files/TextBuffer.h"
#include <TessaryMesh/Files.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace TessaryMesh {

/// A part of a file that consists of rows. `put` appends some of them to a text; other threads may do the
/// same for other rows meanwhile.
struct RowSection {
    std::size_t count;
    std::function<void(std::size_t begin, std::size_t end, TextBuffer& to)> put;
};

/// Writes sections one after the other. Rows are put into text on all threads, block by block, and the
/// blocks are written in their order. Memory is that of a few blocks a thread. Throws what `put`
/// throws; FileError where the system refuses to write; Cancelled.
void writeSections(const std::vector<RowSection>& sections, OutputFile& output);

}  // namespace TessaryMesh
