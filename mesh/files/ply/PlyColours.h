#pragma once

#include "base/Host.h"
#include "base/ParallelBlocks.h"
#include "base/Scalars.h"

#include <atomic>
#include <cstddef>
#include <cstring>

/// Colours as other programs read them from PLY files: 8-bit numbers that count 255ths.
namespace TessaryMesh::Ply {

template <class Real>
Real colourOf(unsigned char number)
{
    return static_cast<Real>(number) / 255;
}

/// The nearest one, whatever the colour is; 0 for what is not a number.
template <class Real>
unsigned char eightBitOf(Real colour)
{
    if (!(colour > 0))
        return 0;
    return colour < 1 ? static_cast<unsigned char>(colour * 255 + Real(0.5)) : 255;
}

/// Whether 8 bits hold the colour to the last bit.
template <class Real>
bool isEightBit(Real colour)
{
    const Real held = colourOf<Real>(eightBitOf(colour));
    return std::memcmp(&held, &colour, sizeof colour) == 0;
}

/// The colours as 8-bit numbers, and whether these hold all of them.
template <class T>
Array<unsigned char> eightBits(const Array<T>& colours, bool& areExact)
{
    const auto* const scalars = scalarsOf(colours.data());
    Array<unsigned char> numbers(colours.size() * Scalars<T>::kCount);
    std::atomic<bool> allExact{true};
    forEachRange(numbers.size(), std::size_t{1} << 16, [&](std::size_t begin, std::size_t end) {
        bool exact = true;
        for (std::size_t i = begin; i < end; ++i) {
            numbers[i] = eightBitOf(scalars[i]);
            exact = exact && isEightBit(scalars[i]);
        }
        if (!exact)
            allExact = false;
    });
    areExact = allExact;
    return numbers;
}

}  // namespace TessaryMesh::Ply
