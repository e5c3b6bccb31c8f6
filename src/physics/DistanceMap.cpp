#include "physics/DistanceMap.h"

#include "math/Geometry.h"
#include "physics/Float4.h"

namespace physics {

using math::real;
using math::Vec2;

static math::Vec2List ToBox(const math::Vec2List& vertices, const math::OBB2D& box) {
    math::Vec2List inBox;
    inBox.reserve(vertices.size());
    for (const Vec2 v : vertices) {
        const Vec2 r = v - box.center;
        inBox.push_back({math::Dot(box.axis[0], r), math::Dot(box.axis[1], r)});
    }
    return inBox;
}

DistanceMap::DistanceMap(const math::Vec2List& vertices, const math::OBB2D& box)
    : m_field(DistanceField::Get(RasterOutline(ToBox(vertices, box), box.halfSize))), m_box(box) {
    m_box.halfSize = DistanceField::GetReach(m_field->GetOutline().halfSize);
    MakeTransforms();
}

DistanceMap::~DistanceMap() noexcept(false) = default;

// A local point p has the map coordinates ((a . (p - c) + H) * SIZE / (2 H) - 0.5), for each axis a and half
// size H of the map's box with centre c.
void DistanceMap::MakeTransforms() {
    constexpr real HALF_CELL = 0.5f;
    const real halfSize[2] = {m_box.halfSize.x, m_box.halfSize.y};
    m_cellsPerMetre = {SIZE / (2 * halfSize[0]), SIZE / (2 * halfSize[1])};
    math::TMatrix3<float> localToMap;
    for (int r = 0; r < 2; ++r) {
        const Vec2 axis = m_box.axis[r];
        const real scale = SIZE / (2 * halfSize[r]);
        localToMap.m[r][0] = axis.x * scale;
        localToMap.m[r][1] = axis.y * scale;
        localToMap.m[r][2] = (halfSize[r] - math::Dot(axis, m_box.center)) * scale - HALF_CELL;
    }
    m_mapToLocal = math::Inverted(localToMap);
}

// Central differences, in cells; at the borders one-sided ones, doubled to the same scale.
Vec2 DistanceMap::GetGradient(int i, int j) const {
    const float* const dist = GetField().GetCells().GetData().data();
    const auto difference = [dist](int at, int stride, int place) {
        if (place == 0) return 2 * (dist[at + stride] - dist[at]);
        if (place == SIZE - 1) return 2 * (dist[at] - dist[at - stride]);
        return dist[at + stride] - dist[at - stride];
    };
    const int at = j * SIZE + i;
    const Vec2 perCell(difference(at, 1, i), difference(at, SIZE, j));
    return math::Normalized(Vec2(perCell.x * m_cellsPerMetre.x, perCell.y * m_cellsPerMetre.y));
}

// The cells of a place side by side, away from the borders: GetGradient, operation by operation. False where
// one of them has no gradient.
bool DistanceMap::GetFourGradients(const Place& p, Vec2* gradients) const {
    constexpr real LEAST = 1e-07f;  // what counts as zero
    if (p.i < 1 || p.j < 1 || p.i > SIZE - 3 || p.j > SIZE - 3) return false;
    const float* const low = GetField().GetCells().GetData().data() + p.j * SIZE + p.i;
    const float* const high = low + SIZE;
    const Float4 dx = LoadTwoAndTwo(low + 1, high + 1) - LoadTwoAndTwo(low - 1, high - 1);
    const Float4 dy = LoadTwoAndTwo(high, high + SIZE) - LoadTwoAndTwo(low - SIZE, low);
    const Float4 x = dx * Float4::Fill(m_cellsPerMetre.x), y = dy * Float4::Fill(m_cellsPerMetre.y);
    const Float4 length = Sqrt(x * x + y * y);
    if (MaskLess4(length, Float4::Fill(LEAST)) != 0) return false;
    const Float4 scale = Float4::Fill(1) / length;
    alignas(16) real xs[4], ys[4];
    Store(xs, x * scale);
    Store(ys, y * scale);
    for (int k = 0; k < 4; ++k) gradients[k] = {xs[k], ys[k]};
    return true;
}

Vec2 DistanceMap::SampleGradient(const Place& p) const {
    Vec2 g[4];
    if (!GetFourGradients(p, g)) {
        g[0] = GetGradient(p.i, p.j);
        g[1] = GetGradient(p.i + 1, p.j);
        g[2] = GetGradient(p.i, p.j + 1);
        g[3] = GetGradient(p.i + 1, p.j + 1);
    }
    const Vec2 low = g[0] * (1 - p.fx) + g[1] * p.fx;
    const Vec2 high = g[2] * (1 - p.fx) + g[3] * p.fx;
    return low * (1 - p.fy) + high * p.fy;
}

}  // namespace physics
