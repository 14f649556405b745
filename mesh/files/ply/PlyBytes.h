#pragma once

#include "files/ply/PlyFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

/// How readers and writers move the values of binary rows.
namespace TessaryMesh::Ply {

/// Whether binary values of this encoding have to be turned round on this machine.
bool needsSwap(Encoding encoding);

/// Turns the bytes of `count` scalars of 1, 2, 4 or 8 bytes round.
void swapScalars(unsigned char* values, std::size_t scalarSize, std::size_t count);

/// Copies `count` scalars of `Size` bytes, turned round with `Swap`. Meant for few of them: a call of
/// memcpy takes longer than the numbers of most rows and lists.
template <std::size_t Size, bool Swap>
inline void copyScalars(unsigned char* to, const unsigned char* from, std::size_t count)
{
    if (!Swap && count > 16) {
        std::memcpy(to, from, count * Size);
        return;
    }
    for (std::size_t k = 0; k < count; ++k, to += Size, from += Size) {
        unsigned char bytes[Size];
        std::memcpy(bytes, from, Size);
        for (std::size_t b = 0; Swap && b < Size / 2; ++b)
            std::swap(bytes[b], bytes[Size - 1 - b]);
        std::memcpy(to, bytes, Size);
    }
}

template <std::size_t Size>
using Bytes = std::integral_constant<std::size_t, Size>;

/// Calls `f` with the size of a scalar, 1, 2, 4 or 8, as a constant.
template <class F>
void withScalarSize(std::size_t size, const F& f)
{
    switch (size) {
        case 1:
            return f(Bytes<1>());
        case 2:
            return f(Bytes<2>());
        case 4:
            return f(Bytes<4>());
        default:
            return f(Bytes<8>());
    }
}

/// Rows are moved property by property in blocks that stay in the nearest cache.
inline constexpr std::size_t kRowsPerBlock = 1024;

/// Calls `visit(row, count)` for each block of the rows from `begin` to `end`.
template <class Visit>
void forEachFewRows(std::size_t begin, std::size_t end, const Visit& visit)
{
    for (std::size_t row = begin; row < end; row += kRowsPerBlock)
        visit(row, std::min(kRowsPerBlock, end - row));
}

}  // namespace TessaryMesh::Ply
