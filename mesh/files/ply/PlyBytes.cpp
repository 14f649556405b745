#include "files/ply/PlyBytes.h"

#include <cstdint>

namespace TessaryMesh::Ply {

bool needsSwap(Encoding encoding)
{
    const std::uint16_t one = 1;
    const bool isLittleMachine = *reinterpret_cast<const unsigned char*>(&one) == 1;
    return (encoding == Encoding::LittleEndian && !isLittleMachine) ||
           (encoding == Encoding::BigEndian && isLittleMachine);
}

void swapScalars(unsigned char* values, std::size_t scalarSize, std::size_t count)
{
    withScalarSize(scalarSize, [&](auto size) {
        if constexpr (size > 1)
            copyScalars<size, true>(values, values, count);
    });
}

}  // namespace TessaryMesh::Ply
