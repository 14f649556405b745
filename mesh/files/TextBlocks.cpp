#include "files/TextBlocks.h"

#include <algorithm>

namespace TessaryMesh {
namespace {

constexpr std::size_t kWindow = 4096;

// The first place from `from` on; the end where there is none.
std::size_t findCut(const Input& text, std::size_t from, CutTest canCut)
{
    InputBuffer buffer;
    for (; from < text.size(); from += kWindow) {
        const std::size_t first = from - std::min(from, kCutContext);
        const std::size_t end = std::min(from + kWindow, text.size());
        const std::string_view part =
            text.part(first, std::min(end + kCutContext, text.size()), buffer);
        for (std::size_t at = from; at < end; ++at)
            if (canCut(part, at - first))
                return at;
    }
    return text.size();
}

}  // namespace

std::size_t usualBlockSize(std::size_t textSize)
{
    constexpr std::size_t kSmallest = std::size_t(256) << 10, kLargest = std::size_t(8) << 20;
    return std::clamp(textSize / 32, kSmallest, kLargest);
}

std::vector<std::size_t> cutIntoBlocks(const Input& text, std::size_t begin, std::size_t blockSize,
                                       CutTest canCut)
{
    std::vector<std::size_t> ends{begin};
    while (ends.back() < text.size())
        ends.push_back(text.size() - ends.back() <= blockSize
                           ? text.size()
                           : findCut(text, ends.back() + blockSize, canCut));
    return ends;
}

}  // namespace TessaryMesh
