#include <Tessary/Primitives.h>

#include "primitives/EnclosingBall.h"
#include "primitives/FarthestPoint.h"

#include <algorithm>

// Welzl's smallest enclosing ball with Gaertner's pivots: EnclosingBall.h solves a short list of points
// that matter, and what sticks out of its ball the farthest joins the list.
//
//   list   p9 p4 p0 p1      points that proved to matter, the latest first
//   ball   of the list      pass over all points: the farthest from its centre outside, p6
//   list   p6 p9 p4 p0 p1   and so on, until none is outside

namespace Tessary {
namespace {

// The entry farthest outside the ball, if any. The ball is widened first where rounding has left an
// entry that carries it outside.
Farthest pivotOf(const EnclosingBall& list, Ball& ball)
{
    for (std::size_t i = 0; i < list.supportEnd(); ++i)
        ball.squaredRadius =
            std::max(ball.squaredRadius, ball.squaredDistance(list.entries()[i].point));
    Farthest pivot = {Farthest::kNone, ball.squaredRadius};
    for (std::size_t i = list.supportEnd(); i < list.entries().size(); ++i) {
        const double d = ball.squaredDistance(list.entries()[i].point);
        if (d > pivot.squaredDistance)
            pivot = {list.entries()[i].index, d};
    }
    return pivot;
}

// A ball that does not grow any more has only rounding errors outside.
Vector3d centerOf(const Array<float3>& points)
{
    EnclosingBall list;
    Ball ball = {widened(points[0]), 0.0};
    list.append({0, ball.center});
    list.append({1, widened(points[1])});
    for (;;) {
        const Ball before = ball;
        Farthest pivot = pivotOf(list, ball);
        const Farthest found = farthestFrom(ball.center, points, pivot.squaredDistance);
        if (found.index != Farthest::kNone)
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
    const Vector3d c = points.size() > 1 ? centerOf(points) : widened(points[0]);
    const float3 center = {static_cast<float>(c.x), static_cast<float>(c.y),
                           static_cast<float>(c.z)};
    return {center, largestFloatDistance(center, points)};
}

}  // namespace Tessary
