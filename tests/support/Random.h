#pragma once

#include <Korvane/Math.h>

#include <cstdint>
#include <random>

namespace TestSupport {

/// Numbers that are the same on every machine.
class Random {
public:
    explicit Random(std::uint32_t seed = 0) : m_bits(seed) {}
    std::uint32_t below(std::uint32_t n) { return m_bits() % n; }
    bool oneIn(std::uint32_t n) { return below(n) == 0; }
    double unit() { return m_bits() * 0x1p-31 - 1; }  // [-1, 1)
    float coordinate() { return static_cast<float>(unit()); }
    Korvane::Math::float3 vector() { return {coordinate(), coordinate(), coordinate()}; }

private:
    std::mt19937 m_bits;
};

}  // namespace TestSupport
