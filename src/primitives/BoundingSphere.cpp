#include <Tessary/Primitives.h>

#include "primitives/EnclosingBall.h"
#include "primitives/FarthestPoint.h"

#include <algorithm>

namespace Tessary {
namespace {

// The entry farthest outside the ball, if any. The ball is widened first where rounding has left an
// entry that carries it outside.
FarthestPoint::Found pivotOf(const EnclosingBall& list, Ball& ball)
{
    for (std::size_t i = 0; i < list.supportEnd(); ++i)
        ball.squaredRadius =
            std::max(ball.squaredRadius, ball.squaredDistance(list.entries()[i].point));
    FarthestPoint::Found pivot = {FarthestPoint::kNone, ball.squaredRadius};
    for (std::size_t i = list.supportEnd(); i < list.entries().size(); ++i) {
        const double d = ball.squaredDistance(list.entries()[i].point);
        if (d > pivot.squaredDistance)
            pivot = {list.entries()[i].index, d};
    }
    return pivot;
}

// Grows a list of points that matter: the point farthest from the ball of the list joins it, until
// none is outside. A ball that does not grow any more has only rounding errors outside.
Vector3d centerOf(const Array<float3>& points, FarthestPoint& farthest)
{
    EnclosingBall list;
    Ball ball = {widened(points[0]), 0.0};
    list.append({0, ball.center});
    list.append({1, widened(points[1])});
    for (;;) {
        const Ball before = ball;
        FarthestPoint::Found pivot = pivotOf(list, ball);
        const FarthestPoint::Found found = farthest.from(ball.center, pivot.squaredDistance);
        if (found.index != FarthestPoint::kNone)
            pivot = found;
        if (!(pivot.squaredDistance > ball.squaredRadius))
            return ball.center;
        list.moveToFront({pivot.index, widened(points[pivot.index])});
        ball = list.rebuilt();
        if (!(ball.squaredRadius > before.squaredRadius))
            return before.center;
    }
}

}  // namespace

Sphere computeBoundingSphere(const Array<float3>& points)
{
    if (points.empty())
        return {};
    FarthestPoint farthest(points);
    const Vector3d c = points.size() > 1 ? centerOf(points, farthest) : widened(points[0]);
    const float3 center = {static_cast<float>(c.x), static_cast<float>(c.y),
                           static_cast<float>(c.z)};
    return {center, farthest.largestFloatDistance(center)};
}

}  // namespace Tessary
