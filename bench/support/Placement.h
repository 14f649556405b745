#pragma once

#include <Pelon/Array.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Bench {

/// Starts of an input, in bytes modulo 4096 behind that of the output: a processor holds back a load of
/// an address that has its low 12 bits in common with that of a store on its way.
inline constexpr std::size_t kStarts[] = {0, 64, 1088, 2048};

/// A copy of `array` that starts `start` bytes modulo 4096 behind `output`.
template <class T>
Pelon::Ptr<Pelon::Array<T>> copyBehind(const void* output, std::size_t start,
                                       const Pelon::Array<T>& array)
{
    constexpr std::size_t kRange = 4096;
    const auto memory =
        std::make_shared<Pelon::Array<unsigned char>>(array.size() * sizeof(T) + kRange);
    const auto addressOf = [](const void* p) { return reinterpret_cast<std::uintptr_t>(p); };
    const std::size_t lead =
        (addressOf(output) + start - addressOf(memory->data())) % kRange / sizeof(T) * sizeof(T);
    T* const first = reinterpret_cast<T*>(memory->data() + lead);
    std::copy(array.begin(), array.end(), first);
    return Pelon::Array<T>::borrow(first, array.size(), memory);
}

}  // namespace Bench
