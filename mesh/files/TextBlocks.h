#pragma once

#include "files/Input.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace TessaryMesh {

/// Whether a text can be taken apart before text[at], where a line begins that nothing before it can
/// continue on. The text may be a part of the whole with kCutContext characters to either side of
/// `at`, as far as there are any.
using CutTest = bool (*)(std::string_view text, std::size_t at);

inline constexpr std::size_t kCutContext = 3;

/// The size of blocks that keep all threads busy and cost little memory in each: a 32nd of the text, 256
/// KiB to 8 MiB. Blocks this large take arrays that the system gets back as soon as they are done with.
std::size_t usualBlockSize(std::size_t textSize);

/// The ends of blocks of [begin, size()), with `begin` in front: each ends at the first place allowed
/// that makes it `blockSize` long or longer.
std::vector<std::size_t> cutIntoBlocks(const Input& text, std::size_t begin, std::size_t blockSize,
                                       CutTest canCut);

}  // namespace TessaryMesh
