#include "files/NumberText.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace TessaryMesh {
namespace {

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = 22;
constexpr std::uint64_t kLargestExactInteger = std::uint64_t(1) << 53;
constexpr int kMostDigits = 18;  // that surely fit in 64 bits

bool isDigit(char c)
{
    return static_cast<unsigned char>(c - '0') < 10;
}

/// digits * 10^exponent, as far as it could be read without losing a digit.
struct Decimal {
    std::uint64_t digits = 0;
    int exponent = 0;
    const char* end = nullptr;  // null where the number is none, or not a short one
};

// The exponent behind an "e", of few digits; `p` stays where there is none.
const char* scanExponent(const char* p, const char* last, int& exponent)
{
    const char* digit = p + 1;
    const bool negative = digit < last && *digit == '-';
    if (digit < last && (*digit == '-' || *digit == '+'))
        ++digit;
    const char* const begin = digit;
    int value = 0;
    while (digit < last && isDigit(*digit) && digit - begin < 4)
        value = 10 * value + (*digit++ - '0');
    if (digit == begin)
        return p;
    exponent += negative ? -value : value;
    return digit < last && isDigit(*digit) ? nullptr : digit;
}

inline Decimal scanShortDecimal(const char* p, const char* last)
{
    Decimal decimal;
    const char* const begin = p;
    while (p < last && isDigit(*p))
        decimal.digits = 10 * decimal.digits + static_cast<unsigned>(*p++ - '0');
    std::ptrdiff_t count = p - begin;
    if (p < last && *p == '.') {
        const char* const fraction = ++p;
        while (p < last && isDigit(*p))
            decimal.digits = 10 * decimal.digits + static_cast<unsigned>(*p++ - '0');
        count += p - fraction;
        if (count <= kMostDigits)
            decimal.exponent = static_cast<int>(fraction - p);
    }
    if (count == 0 || count > kMostDigits)
        return decimal;
    decimal.end = p < last && (*p | 0x20) == 'e' ? scanExponent(p, last, decimal.exponent) : p;
    return decimal;
}

// Both operands are exact, so the one rounding of the result is the right one.
inline bool toDouble(const Decimal& decimal, double& value)
{
    if (decimal.digits > kLargestExactInteger || decimal.exponent < -kLargestExactPower ||
        decimal.exponent > kLargestExactPower)
        return false;
    const double digits = static_cast<double>(decimal.digits);
    value = decimal.exponent < 0 ? digits / kPowersOfTen[-decimal.exponent]
                                 : digits * kPowersOfTen[decimal.exponent];
    return true;
}

inline bool narrow(double exact, double& value)
{
    value = exact;
    return true;
}

// Rounding twice goes wrong only where the first rounding ends half-way between two floats.
inline bool narrow(double nearest, float& value)
{
    constexpr std::uint64_t kBelowFloat = (std::uint64_t(1) << 29) - 1;
    constexpr std::uint64_t kHalfWay = std::uint64_t(1) << 28;
    std::uint64_t bits;
    std::memcpy(&bits, &nearest, sizeof bits);
    const bool isNormal = nearest >= std::numeric_limits<float>::min() &&
                          nearest <= static_cast<double>(std::numeric_limits<float>::max());
    if ((!isNormal && nearest != 0) || (bits & kBelowFloat) == kHalfWay)
        return false;
    value = static_cast<float>(nearest);
    return true;
}

// Whether the number in [first, end), which no value of its type is near, is too large for it
// rather than too small: where its first digit that is not 0 stands, seen from the point.
bool isLarge(const char* first, const char* end)
{
    long long place = 0;
    bool seenPoint = false, seenDigit = false;
    const char* p = first;
    for (; p < end && (isDigit(*p) || *p == '.'); ++p) {
        seenPoint = seenPoint || *p == '.';
        seenDigit = seenDigit || (*p != '.' && *p != '0');
        if (*p != '.')
            place += seenDigit && !seenPoint ? 1 : !seenDigit && seenPoint ? -1 : 0;
    }
    long long exponent = 0;
    if (p < end && (*p | 0x20) == 'e') {
        const char* const digits = p + (p[1] == '+' ? 2 : 1);
        if (std::from_chars(digits, end, exponent).ec == std::errc::result_out_of_range)
            return *digits != '-';
    }
    return place + exponent > 0;
}

template <class Float>
const char* scanAnyFloat(const char* first, const char* last, Float& value)
{
    Float read = 0;
    const auto [end, error] = std::from_chars(first, last, read);
    if (error == std::errc::invalid_argument)
        return nullptr;
    if (error == std::errc::result_out_of_range)
        read = isLarge(first, end) ? std::numeric_limits<Float>::infinity() : 0;
    value = read;
    return end;
}

template <class Float>
inline const char* scanFloat(const char* first, const char* last, Float& value)
{
    const bool negative = first < last && *first == '-';
    if (first < last && (*first == '-' || *first == '+'))
        ++first;
    if (first == last || *first == '-' || *first == '+')
        return nullptr;
    double nearest;
    Float magnitude;
    const Decimal decimal = scanShortDecimal(first, last);
    const char* end = decimal.end;
    if (!end || !toDouble(decimal, nearest) || !narrow(nearest, magnitude))
        end = scanAnyFloat(first, last, magnitude);
    if (end)
        value = negative ? -magnitude : magnitude;
    return end;
}

template <class Integer>
const char* scanInteger(const char* first, const char* last, Integer& value)
{
    if (first < last && *first == '+' && !(last - first > 1 && first[1] == '-'))
        ++first;
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? end : nullptr;
}

}  // namespace

template <class T>
const char* scanNumber(const char* first, const char* last, T& value)
{
    if constexpr (std::is_floating_point_v<T>)
        return scanFloat(first, last, value);
    else
        return scanInteger(first, last, value);
}

template <class T>
char* formatNumber(char* out, T value)
{
    return std::to_chars(out, out + kNumberTextSize, value).ptr;
}

template <class T>
using Reference = T&;

#define MESHIO_NUMBER(T)                                                              \
    template const char* scanNumber<T>(const char*, const char*, Reference<T> value); \
    template char* formatNumber<T>(char*, T)
MESHIO_NUMBER(float);
MESHIO_NUMBER(double);
MESHIO_NUMBER(signed char);
MESHIO_NUMBER(unsigned char);
MESHIO_NUMBER(short);
MESHIO_NUMBER(unsigned short);
MESHIO_NUMBER(int);
MESHIO_NUMBER(unsigned int);
MESHIO_NUMBER(long);
MESHIO_NUMBER(unsigned long);
MESHIO_NUMBER(long long);
MESHIO_NUMBER(unsigned long long);
#undef MESHIO_NUMBER

}  // namespace TessaryMesh
