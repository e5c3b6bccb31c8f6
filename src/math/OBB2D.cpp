#include "math/OBB2D.h"

#include <algorithm>
#include <limits>

#include "math/Geometry.h"
#include "util/Assert.h"

namespace math {

OBB2D OBB2D::Build(const Vec2* points, size_t nPoints, Vec2 a) {
    DATA_CHECK(nPoints > 1);
    constexpr real INF = std::numeric_limits<real>::infinity();
    const Vec2 b = Perpendicular(a);
    Vec2 low(INF, INF), high(-INF, -INF);
    for (size_t i = 0; i < nPoints; ++i) {
        const Vec2 p(Dot(a, points[i]), Dot(b, points[i]));
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    OBB2D box;
    box.center = ((low.x + high.x) * a + (low.y + high.y) * b) / 2;
    box.axis[0] = a;
    box.axis[1] = b;
    box.halfSize = (high - low) / 2;
    return box;
}

OBB2D OBB2D::BuildBest(const Vec2* points, size_t nPoints) {
    constexpr int CANDIDATES = 8;
    constexpr real STEP = 0.20943952f;  // 12 degrees
    OBB2D best = Build(points, nPoints, FindMainAxisSimple(points, nPoints));
    real t = 0;
    for (int i = 0; i < CANDIDATES; ++i, t += STEP) {
        const OBB2D candidate = Build(points, nPoints, Vec2(std::cos(t), std::sin(t)));
        if (candidate.GetArea() < best.GetArea()) best = candidate;
    }
    return best;
}

}  // namespace math
