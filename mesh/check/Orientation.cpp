#include "check/Orientation.h"

#include <cmath>

namespace TessaryMesh {
namespace {

int signOf(double x)
{
    return (x > 0) - (x < 0);
}

// a + b = sum + rest exactly, whichever is larger, as long as nothing overflows.
void addExactly(double a, double b, double& sum, double& rest)
{
    sum = a + b;
    const double ofB = sum - a, ofA = sum - ofB;
    rest = (a - ofA) + (b - ofB);
}

// The determinant multiplied out, ax by - ay bx + bx cy - by cx + cx ay - cy ax. The product of two
// floats has 48 bits and is at least 2^-298 or 0, so doubles hold it exactly; sums stay below 2^259.
// The partial sum is kept as an expansion: parts that do not overlap, the smallest first, so that the
// last one that is not 0 has its sign.
int exactOrientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    const double terms[] = {double{a.x} * b.y,    -(double{a.y} * b.x), double{b.x} * c.y,
                            -(double{b.y} * c.x), double{c.x} * a.y,    -(double{c.y} * a.x)};
    double parts[6] = {};
    int count = 0;
    for (const double term : terms) {
        double carried = term;
        for (int i = 0; i < count; ++i)
            addExactly(carried, parts[i], carried, parts[i]);
        parts[count++] = carried;
    }
    int sign = 0;
    for (int i = count; i-- > 0 && sign == 0;)
        sign = signOf(parts[i]);
    return sign;
}

}  // namespace

int orientation(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c)
{
    // Four roundings, of half a unit in the last place each, are below 3 + 16 * 2^-53 units of the sum of
    // the products: beyond that the sign is certain.
    constexpr double kErrorBound = (3 + 16 * 0x1p-53) * 0x1p-53;
    const double left = (double{a.x} - c.x) * (double{b.y} - c.y);
    const double right = (double{a.y} - c.y) * (double{b.x} - c.x);
    const double determinant = left - right;
    if (std::fabs(determinant) > kErrorBound * (std::fabs(left) + std::fabs(right)))
        return signOf(determinant);
    return exactOrientation(a, b, c);
}

}  // namespace TessaryMesh
