#include "ops/CountSearch.h"

#include "base/FixedMath.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace TessaryMesh {
namespace {

constexpr int kMostTries = 32;
constexpr double kNearlySame = 1e-6;  // logarithms of distances

// Logarithms of a distance and of the samples that it yields, one more than there are.
struct Try {
    double distance, samples;
};

double slopeBetween(const Try& a, const Try& b)
{
    return (a.samples - b.samples) / (a.distance - b.distance);
}

// Between too many and too few samples: where the line between the two says, but never so near one
// end that the other would hardly move.
double between(const Try& many, const Try& few, double wanted)
{
    const double width = few.distance - many.distance;
    const double share = (wanted - many.samples) / (few.samples - many.samples);
    return many.distance + width * std::clamp(share, 0.1, 0.9);
}

}  // namespace

void searchForCount(std::uint64_t wanted, double guess, double least,
                    const std::function<std::uint64_t(double)>& samplesAt)
{
    constexpr double kFarthestStep = 2.5;
    const double aim = fixedLog(static_cast<double>(wanted) + 1), floor = fixedLog(least);
    std::optional<Try> many, few, last;
    double distance = fixedLog(guess), slope = -2;
    for (int i = 0; i < kMostTries; ++i) {
        const std::uint64_t found = samplesAt(std::max(fixedExp(distance), least));
        const std::uint64_t miss = found > wanted ? found - wanted : wanted - found;
        if (miss * 50 <= wanted)
            return;
        const Try now{distance, fixedLog(static_cast<double>(found) + 1)};
        if (last && now.distance != last->distance)
            slope = std::clamp(slopeBetween(now, *last), -4.0, -0.25);
        last = now;
        (found > wanted ? many : few) = now;
        distance = many && few ? between(*many, *few, aim)
                               : distance + std::clamp((aim - now.samples) / slope, -kFarthestStep,
                                                       kFarthestStep);
        distance = std::max(distance, floor);
        if (std::abs(distance - now.distance) < kNearlySame)
            return;
    }
}

}  // namespace TessaryMesh
