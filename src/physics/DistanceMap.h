#pragma once

#include "math/Matrix2.h"
#include "math/Matrix3.h"
#include "math/OBB2D.h"
#include "math/Vector.h"
#include "physics/DistanceField.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"

namespace physics {

// The signed distance field of a simple outline in the outline's own coordinates. The field itself is shared
// by all congruent outlines, and made when something asks for a distance.
//
// Cell (i, j) has its centre at the map point (i, j) exactly.
class DistanceMap : public util::Pointee {
  public:
    static constexpr int SIZE = DistanceField::SIZE;  // cells along each side

    // `vertices` of a simple outline; `box` is their tight box.
    DistanceMap(const math::Vec2List& vertices, const math::OBB2D& box);
    ~DistanceMap() noexcept(false) override;

    // Bilinear samples at a local point, which is drawn to the border of the map from beyond it.
    math::real SampleDistance(math::Vec2 local) const { return SampleDistance(Locate(local)); }
    math::Vec2 SampleGradient(math::Vec2 local) const {  // outward; not unit, and zero in places
        return SampleGradient(Locate(local));
    }
    // Whether a point lies inside; both samples, if it does.
    bool SampleInside(math::Vec2 local, math::real& distance, math::Vec2& gradient) const;

    const DistanceField::Cells& GetDistMap() const { return GetField().GetCells(); }  // m, negative inside
    void BuildAhead() const { GetField().BuildAhead(); }
    const math::OBB2D& GetBox() const { return m_box; }  // what the map covers
    const math::TMatrix3<float>& GetLocalToMap() const { return m_localToMap; }
    const math::TMatrix3<float>& GetMapToLocal() const { return m_mapToLocal; }

  private:
    // Where a local point lies: the cell below and left of it, and how far into the next ones.
    struct Place {
        int i, j, nextI, nextJ;
        math::real fx, fy;  // 0 to 1
    };

    const DistanceField& GetField() const;
    void MakeTransforms();
    Place Locate(math::Vec2 local) const;
    math::real SampleDistance(const Place& place) const;
    math::Vec2 SampleGradient(const Place& place) const;
    math::Vec2 GetGradient(int i, int j) const;  // unit, of a cell
    bool GetFourGradients(const Place& place, math::Vec2* gradients) const;

    const RasterOutline m_outline;
    math::OBB2D m_box;
    math::TMatrix3<float> m_localToMap;
    math::TMatrix3<float> m_mapToLocal;
    math::TMatrix2<float> m_gradientToLocal;
    mutable util::SharedPtr<const DistanceField> m_field;  // null until asked for
};

inline const DistanceField& DistanceMap::GetField() const {
    if (!m_field) m_field = DistanceField::Get(m_outline);
    return *m_field.Get();
}

// Points beyond the map, which none inside an outline's box is, count as points on its border; so does a
// NaN, whose cell would not be a number.
inline DistanceMap::Place DistanceMap::Locate(math::Vec2 local) const {
    constexpr math::real LAST = SIZE - 1;
    const auto& m = m_localToMap.m;
    math::real x = m[0][0] * local.x + m[0][1] * local.y + m[0][2];
    math::real y = m[1][0] * local.x + m[1][1] * local.y + m[1][2];
    x = x > 0 ? (x < LAST ? x : LAST) : 0;
    y = y > 0 ? (y < LAST ? y : LAST) : 0;
    Place place;
    place.i = static_cast<int>(x);
    place.j = static_cast<int>(y);
    place.nextI = place.i < SIZE - 1 ? place.i + 1 : place.i;
    place.nextJ = place.j < SIZE - 1 ? place.j + 1 : place.j;
    place.fx = x - static_cast<math::real>(place.i);
    place.fy = y - static_cast<math::real>(place.j);
    return place;
}

inline math::real DistanceMap::SampleDistance(const Place& p) const {
    const float* const cells = GetField().GetCells().GetData().data();
    const float low = cells[p.j * SIZE + p.i] * (1 - p.fx) + cells[p.j * SIZE + p.nextI] * p.fx;
    const float high = cells[p.nextJ * SIZE + p.i] * (1 - p.fx) + cells[p.nextJ * SIZE + p.nextI] * p.fx;
    return low * (1 - p.fy) + high * p.fy;
}

inline bool DistanceMap::SampleInside(math::Vec2 local, math::real& distance, math::Vec2& gradient) const {
    const Place place = Locate(local);
    distance = SampleDistance(place);
    if (!(distance < 0)) return false;
    gradient = SampleGradient(place);
    return true;
}

}  // namespace physics
