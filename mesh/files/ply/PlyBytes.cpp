#include "files/ply/PlyBytes.h"

#include <cstdint>

namespace TessaryMesh::Ply {

bool needsSwap(MeshFormat format)
{
    const std::uint16_t one = 1;
    const bool isLittleMachine = *reinterpret_cast<const unsigned char*>(&one) == 1;
    return (format == MeshFormat::PlyBinary && !isLittleMachine) ||
           (format == MeshFormat::PlyBinaryBigEndian && isLittleMachine);
}

void swapScalars(unsigned char* values, std::size_t scalarSize, std::size_t count)
{
    withScalarSize(scalarSize, [&](auto size) {
        if constexpr (size > 1)
            copyScalars<size, true>(values, values, count);
    });
}

}  // namespace TessaryMesh::Ply
