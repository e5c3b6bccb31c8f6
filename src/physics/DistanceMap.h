#pragma once

#include <algorithm>
#include <cstdint>

#include "math/Matrix3.h"
#include "math/OBB2D.h"
#include "math/Vector.h"
#include "physics/DistanceField.h"
#include "physics/Float4.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"

namespace physics {

// The signed distance field of a simple outline in the frame of its tight box: the box's centre is the
// origin, its axes are the axes. The field itself is shared by all congruent outlines, and made when
// something asks for a distance.
//
// Cell (i, j) has its centre at the map point (i, j) exactly.
class DistanceMap : public util::Pointee {
  public:
    static constexpr int SIZE = DistanceField::SIZE;  // cells along each side

    // `vertices` of a simple outline; `box` is their tight box.
    DistanceMap(const math::Vec2List& vertices, const math::OBB2D& box);
    ~DistanceMap() noexcept(false) override;

    // Bilinear samples at a point in the box's frame, which is drawn to the border of the map from beyond it.
    math::real SampleDistance(math::Vec2 inBox) const { return SampleDistance(Locate(inBox)); }
    math::Vec2 SampleGradient(math::Vec2 inBox) const {  // outward; not unit, and zero in places
        return SampleGradient(Locate(inBox));
    }
    // At four points.
    Float4 SampleDistances(Float4 x, Float4 y) const { return GetDistances(LocateFour(x, y)); }
    // Both the distances and how they rise along the axes from one cell to the next; not unit, and zero in
    // places.
    struct FourSlopes {
        Float4 distances, x, y;
    };
    FourSlopes SampleSlopes(Float4 x, Float4 y) const;
    // Whether a point lies inside; both samples, if it does.
    bool SampleInside(math::Vec2 inBox, math::real& distance, math::Vec2& gradient) const;

    const DistanceField::Cells& GetDistMap() const { return GetField().GetCells(); }  // m, negative inside
    void BuildAhead() const { GetField().BuildAhead(); }
    const math::OBB2D& GetBox() const { return m_box; }  // what the map covers
    const math::TMatrix3<float>& GetMapToLocal() const { return m_mapToLocal; }

  private:
    // Where a point lies: the cell below and left of it, and how far into the next ones.
    struct Place {
        int i, j;           // at most SIZE - 2
        math::real fx, fy;  // 0 to 1
    };

    static constexpr math::real LAST = SIZE - 1, MIDDLE = LAST / 2;  // cells

    // Four places: the cells' distances at their corners, and how far into them.
    struct FourPlaces {
        Float4 lowLeft, lowRight, highLeft, highRight;
        Float4 fx, fy;
    };

    const DistanceField& GetField() const { return *m_field.Get(); }
    void MakeTransforms();
    Place Locate(math::Vec2 inBox) const;
    FourPlaces LocateFour(Float4 x, Float4 y) const;
    static Float4 GetDistances(const FourPlaces& places);
    math::real SampleDistance(const Place& place) const;
    math::Vec2 SampleGradient(const Place& place) const;
    math::Vec2 GetGradient(int i, int j) const;  // unit, of a cell
    bool GetFourGradients(const Place& place, math::Vec2* gradients) const;

    util::SharedPtr<const DistanceField> m_field;
    math::OBB2D m_box;
    math::TMatrix3<float> m_mapToLocal;
    math::Vec2 m_cellsPerMetre;  // along either axis
};

// Points beyond the map, which none inside an outline's box is, count as points on its border; so does a
// NaN, whose cell would not be a number.
inline DistanceMap::Place DistanceMap::Locate(math::Vec2 inBox) const {
    math::real x = inBox.x * m_cellsPerMetre.x + MIDDLE;
    math::real y = inBox.y * m_cellsPerMetre.y + MIDDLE;
    x = x > 0 ? (x < LAST ? x : LAST) : 0;
    y = y > 0 ? (y < LAST ? y : LAST) : 0;
    Place place;
    place.i = std::min(static_cast<int>(x), SIZE - 2);
    place.j = std::min(static_cast<int>(y), SIZE - 2);
    place.fx = x - static_cast<math::real>(place.i);
    place.fy = y - static_cast<math::real>(place.j);
    return place;
}

inline math::real DistanceMap::SampleDistance(const Place& p) const {
    const float* const cells = GetField().GetCells().GetData().data();
    const float* const corner = cells + p.j * SIZE + p.i;
    const float low = corner[0] * (1 - p.fx) + corner[1] * p.fx;
    const float high = corner[SIZE] * (1 - p.fx) + corner[SIZE + 1] * p.fx;
    return low * (1 - p.fy) + high * p.fy;
}

// Of four points, these operations give the same bits.
inline DistanceMap::FourPlaces DistanceMap::LocateFour(Float4 x, Float4 y) const {
    const Float4 zero = Float4::Zero(), last = Float4::Fill(LAST), lastCell = Float4::Fill(SIZE - 2);
    const auto locate = [&](Float4 place, math::real cellsPerMetre) {
        return Min(last, Max(zero, place * Float4::Fill(cellsPerMetre) + Float4::Fill(MIDDLE)));
    };
    x = locate(x, m_cellsPerMetre.x);
    y = locate(y, m_cellsPerMetre.y);
    const Float4 i = Min(Truncate(x), lastCell), j = Min(Truncate(y), lastCell);
    uint32_t corners[Float4::LANES];
    StoreWhole4(corners, j * Float4::Fill(SIZE) + i);
    const float* const cells = GetField().GetCells().GetData().data();
    FourPlaces places;
    GatherNext4(cells, corners, places.lowLeft, places.lowRight);
    GatherNext4(cells + SIZE, corners, places.highLeft, places.highRight);
    places.fx = x - i;
    places.fy = y - j;
    return places;
}

inline Float4 DistanceMap::GetDistances(const FourPlaces& p) {
    const Float4 one = Float4::Fill(1);
    const Float4 low = p.lowLeft * (one - p.fx) + p.lowRight * p.fx;
    const Float4 high = p.highLeft * (one - p.fx) + p.highRight * p.fx;
    return low * (one - p.fy) + high * p.fy;
}

// The derivatives of the bilinear samples.
inline DistanceMap::FourSlopes DistanceMap::SampleSlopes(Float4 x, Float4 y) const {
    const FourPlaces p = LocateFour(x, y);
    const Float4 one = Float4::Fill(1);
    const Float4 alongX = (p.lowRight - p.lowLeft) * (one - p.fy) + (p.highRight - p.highLeft) * p.fy;
    const Float4 alongY = (p.highLeft - p.lowLeft) * (one - p.fx) + (p.highRight - p.lowRight) * p.fx;
    return {GetDistances(p), alongX * Float4::Fill(m_cellsPerMetre.x),
            alongY * Float4::Fill(m_cellsPerMetre.y)};
}

inline bool DistanceMap::SampleInside(math::Vec2 inBox, math::real& distance, math::Vec2& gradient) const {
    const Place place = Locate(inBox);
    distance = SampleDistance(place);
    if (!(distance < 0)) return false;
    gradient = SampleGradient(place);
    return true;
}

}  // namespace physics
