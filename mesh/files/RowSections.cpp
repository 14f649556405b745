#include "files/RowSections.h"

#include "base/ParallelBlocks.h"

#include <algorithm>
#include <utility>

namespace TessaryMesh {
namespace {

// A quarter to a whole megabyte for most rows: long enough for one call of the system, and there are
// enough of them for all threads.
constexpr std::size_t kRowsPerBlock = 8192;

struct Block {
    const RowSection* section;
    std::size_t begin, end;
};

std::vector<Block> blocksOf(const std::vector<RowSection>& sections)
{
    std::vector<Block> blocks;
    for (const RowSection& section : sections)
        for (std::size_t begin = 0; begin < section.count; begin += kRowsPerBlock)
            blocks.push_back({&section, begin, std::min(begin + kRowsPerBlock, section.count)});
    return blocks;
}

}  // namespace

void writeSections(const std::vector<RowSection>& sections, OutputFile& output)
{
    const std::vector<Block> blocks = blocksOf(sections);
    std::vector<TextBuffer> texts(blockSlots());
    pipeBlocks(
        blocks.size(),
        [&](std::size_t block, std::size_t slot) {
            // On this thread's stack: buffers side by side would share cache lines, 2.2 times slower.
            TextBuffer text;
            std::swap(text, texts[slot]);
            text.clear();
            blocks[block].section->put(blocks[block].begin, blocks[block].end, text);
            std::swap(text, texts[slot]);
        },
        [&](std::size_t, std::size_t slot) { output.write(texts[slot].view()); });
}

}  // namespace TessaryMesh
