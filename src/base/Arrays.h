#pragma once

#include "base/Host.h"

#include <cstddef>

namespace Tessary {

/// Gives an output array its size where every element is about to be written: its storage is reused,
/// and old elements are neither moved nor, where there are enough of them, written twice.
template <class T>
void resizeForOverwriting(Array<T>& array, std::size_t size)
{
    if (array.size() < size)
        array.resize(0);
    array.resize(size);
}

}  // namespace Tessary
