#pragma once

/// Functions whose bits are the same on every machine, as those of a system's library are not: nothing but
/// IEEE additions, multiplications and divisions in a fixed order, and exact scalings. Errors are below 2
/// units in the last place.
namespace TessaryMesh {

/// The natural logarithm of a finite number above zero.
double fixedLog(double x);

/// e to the power of x, for |x| up to 700.
double fixedExp(double x);

struct CosSin {
    double cos, sin;
};

/// Of an angle of 0 to 180 degrees. Exact at 0, 90 and 180, and the same number twice at 45 and 135.
CosSin fixedCosSin(double degrees);

}  // namespace TessaryMesh
