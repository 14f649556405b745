#include "base/FixedMath.h"

#include <cmath>

namespace TessaryMesh {
namespace {

// ln 2, the upper 32 bits of it apart, so that multiples up to 2^20 are exact.
constexpr double kLn2High = 6.93147180369123816490e-01, kLn2Low = 1.90821492927058770002e-10;
constexpr double kHalfRoot = 0.70710678118654752440;

// Taylor's series at up to 45 degrees: the first term left out is below 2^-56.
double sineOf(double x)
{
    const double y = x * x;
    double sum = 0;
    for (int n = 17; n >= 3; n -= 2)
        sum = (1 - sum) * y / (n * (n - 1));
    return x - x * sum;
}

double cosineOf(double x)
{
    const double y = x * x;
    double sum = 0;
    for (int n = 18; n >= 2; n -= 2)
        sum = (1 - sum) * y / (n * (n - 1));
    return 1 - sum;
}

}  // namespace

// x = 2^k m with m near 1, and ln m = 2 artanh s = 2 (s + s^3 / 3 + s^5 / 5 + ...) with
// s = (m - 1) / (m + 1), |s| < 0.172.
double fixedLog(double x)
{
    int k = 0;
    double m = std::frexp(x, &k);
    if (m < kHalfRoot) {
        m *= 2;
        --k;
    }
    const double s = (m - 1) / (m + 1), y = s * s;
    double sum = 0;
    for (int n = 23; n >= 3; n -= 2)
        sum = (sum + 1.0 / n) * y;
    return k * kLn2High + (k * kLn2Low + (2 * s + 2 * s * sum));
}

// x = k ln 2 + r, |r| < 0.347, and Taylor's series of e^r.
double fixedExp(double x)
{
    const double k = std::floor(x / kLn2High + 0.5);
    const double r = (x - k * kLn2High) - k * kLn2Low;
    double sum = 0;
    for (int n = 14; n >= 2; --n)
        sum = (sum + 1) * r / n;
    return std::ldexp(1 + (r + r * sum), static_cast<int>(k));
}

CosSin fixedCosSin(double degrees)
{
    if (degrees > 90) {
        const CosSin mirrored = fixedCosSin(180 - degrees);
        return {-mirrored.cos, mirrored.sin};
    }
    constexpr double kRadiansPerDegree = 0.017453292519943295769;
    if (degrees == 45)
        return {kHalfRoot, kHalfRoot};
    const bool isLarge = degrees > 45;
    const double x = (isLarge ? 90 - degrees : degrees) * kRadiansPerDegree;
    return isLarge ? CosSin{sineOf(x), cosineOf(x)} : CosSin{cosineOf(x), sineOf(x)};
}

}  // namespace TessaryMesh
