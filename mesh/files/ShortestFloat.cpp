#include "files/ShortestFloat.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace TessaryMesh {
namespace {

// A float is c 2^q. All numbers between the midpoints to its neighbours, (c - 1/2) 2^q and (c + 1/2) 2^q,
// read back as it; below a power of two the neighbours lie twice as close. With 10^-k at most as large
// as that interval and 10^(1-k) larger, one or more multiples of 10^-k lie in it, and at most one of
// 10^(1-k), which is shorter (Giulietti, "The Schubfach way to render doubles", 2020).
//
// For the exponents here 4 c 10^k / 2^q fits into 64 bits with the powers of two taken out of 10^k, so that
// all comparisons are exact.
constexpr int kSmallestExponent = -37, kLargestExponent = 0;  // q
constexpr int kMantissaBits = 23;

/// What belongs to an exponent: numbers are compared in units of 2^-shift 10^-places.
struct Scale {
    int places;              // k
    int shift;               // 2 - q - k
    std::uint64_t powerOf5;  // 5^k
};

// floor(q log10 2), and that of 3/4 2^q for powers of two.
constexpr int floorLog10(int exponent, bool isPowerOf2)
{
    constexpr int kLog10Of2 = 1262611, kLog10Of4Thirds = 524031;  // times 2^22
    return (exponent * kLog10Of2 - (isPowerOf2 ? kLog10Of4Thirds : 0)) >> 22;
}

constexpr Scale scaleOf(int exponent, bool isPowerOf2)
{
    const int places = -floorLog10(exponent, isPowerOf2);
    std::uint64_t power = 1;
    for (int i = 0; i < places; ++i)
        power *= 5;
    return {places, 2 - exponent - places, power};
}

struct Scales {
    Scale scale[2][kLargestExponent - kSmallestExponent + 1];
};

constexpr Scales makeScales()
{
    Scales scales{};
    for (int exponent = kSmallestExponent; exponent <= kLargestExponent; ++exponent)
        for (const bool isPowerOf2 : {false, true})
            scales.scale[isPowerOf2][exponent - kSmallestExponent] = scaleOf(exponent, isPowerOf2);
    return scales;
}

constexpr Scales kScales = makeScales();

/// digits 10^-places.
struct Decimal {
    std::uint32_t digits;
    int places;
};

/// The interval of numbers that read back as c 2^q. Its ends belong to it where c is even.
class Interval {
public:
    Interval(std::uint64_t c, bool isPowerOf2, const Scale& scale)
        : m_value(4 * c * scale.powerOf5),
          m_low((4 * c - (isPowerOf2 ? 1 : 2)) * scale.powerOf5 + c % 2),
          m_high((4 * c + 2) * scale.powerOf5 - c % 2),
          m_shift(scale.shift)
    {}

    bool contains(std::uint64_t integer) const
    {
        const std::uint64_t scaled = integer << m_shift;
        return m_low <= scaled && scaled <= m_high;
    }

    std::uint64_t floorOfValue() const { return m_value >> m_shift; }

    // Of the two integers around the value, the even one where both are as near.
    std::uint64_t nearestInteger() const
    {
        const std::uint64_t floor = floorOfValue();
        const std::uint64_t rest = m_value - (floor << m_shift), half = std::uint64_t(1)
                                                                        << (m_shift - 1);
        return floor + (rest > half || (rest == half && floor % 2 == 1));
    }

private:
    std::uint64_t m_value, m_low, m_high;
    int m_shift;
};

Decimal withoutTrailingZeros(Decimal decimal)
{
    for (; decimal.digits % 10 == 0; decimal.digits /= 10)
        --decimal.places;
    return decimal;
}

Decimal shortestDecimal(std::uint32_t c, bool isPowerOf2, int exponent)
{
    const Scale& scale = kScales.scale[isPowerOf2][exponent - kSmallestExponent];
    const Interval interval(c, isPowerOf2, scale);
    const std::uint64_t floor = interval.floorOfValue();
    const std::uint64_t ten = floor / 10 * 10;
    for (const std::uint64_t shorter : {ten, ten + 10})
        if (interval.contains(shorter))
            return withoutTrailingZeros({static_cast<std::uint32_t>(shorter), scale.places});
    const bool hasFloor = interval.contains(floor);
    const std::uint64_t digits =
        hasFloor && interval.contains(floor + 1) ? interval.nearestInteger() : floor + !hasFloor;
    return {static_cast<std::uint32_t>(digits), scale.places};
}

// Null where the form with an exponent, "1e+05" or "1e-04", is shorter.
char* formatDecimal(char* out, Decimal decimal)
{
    char digits[16];
    const int count = static_cast<int>(
        std::to_chars(digits, digits + sizeof digits, decimal.digits).ptr - digits);
    const int exponentForm = 4 + (count > 1);  // beyond the digits
    if (decimal.places <= 0) {
        if (-decimal.places > exponentForm)
            return nullptr;
        std::memcpy(out, digits, sizeof digits);
        std::memset(out + count, '0', static_cast<std::size_t>(-decimal.places));
        return out + count - decimal.places;
    }
    const int whole = count - decimal.places;
    if (whole > 0) {
        std::memcpy(out, digits, sizeof digits);
        out[whole] = '.';
        std::memcpy(out + whole + 1, digits + whole, 8);  // 9 digits, one of them before the point
        return out + count + 1;
    }
    if (2 - whole > exponentForm)
        return nullptr;
    std::memcpy(out, "0.00000", 8);
    std::memcpy(out + 2 - whole, digits, 9);
    return out + 2 + decimal.places;
}

}  // namespace

char* formatShortestFloat(char* out, float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const std::uint32_t mantissa = bits & ((1u << kMantissaBits) - 1);
    const int exponent = static_cast<int>(bits >> kMantissaBits & 0xFF) - 150;
    *out = '-';
    out += bits >> 31;
    if (bits << 1 == 0) {
        *out = '0';
        return out + 1;
    }
    if (exponent < kSmallestExponent || exponent > kLargestExponent)
        return nullptr;
    return formatDecimal(out,
                         shortestDecimal(mantissa | 1u << kMantissaBits, mantissa == 0, exponent));
}

}  // namespace TessaryMesh
