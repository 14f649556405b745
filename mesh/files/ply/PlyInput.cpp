#include "files/ply/PlyInput.h"

#include "base/ParallelBlocks.h"

#include <algorithm>

namespace TessaryMesh::Ply {

std::string_view headOf(const Input& input, InputBuffer& buffer)
{
    for (std::size_t size = std::size_t(64) << 10; size < input.size(); size *= 4) {
        const std::string_view head = input.head(size, buffer);
        const std::size_t last = head.find("\nend_header");
        if (last != std::string_view::npos && head.find('\n', last + 1) != std::string_view::npos)
            return head;
    }
    return input.head(input.size(), buffer);
}

Array<unsigned char> bytesFrom(const Input& input, std::size_t begin)
{
    constexpr std::size_t kPart = std::size_t(2) << 20;
    Array<unsigned char> bytes(input.size() - begin);
    forEachBlock((bytes.size() + kPart - 1) / kPart, [&](std::size_t part) {
        const std::size_t first = part * kPart, last = std::min(first + kPart, bytes.size());
        input.read(begin + first, begin + last, reinterpret_cast<char*>(&bytes[first]));
    });
    return bytes;
}

}  // namespace TessaryMesh::Ply
