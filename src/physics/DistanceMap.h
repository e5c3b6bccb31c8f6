#pragma once

#include <cstdint>

#include "math/Matrix3.h"
#include "math/OBB2D.h"
#include "math/Vector.h"
#include "physics/Line.h"
#include "util/Array2D.h"
#include "util/Pointee.h"
#include "util/VectorPOD.h"

namespace physics {

// The signed distance field of a simple outline, sampled into a grid of SIZE by SIZE cells, with the
// direction outward and the arc length of the nearest outline point beside it. Never changes once built.
//
// Cell (i, j) has its centre at the map point (i, j) exactly. The grid covers the outline's box and a margin
// of two cells, at least 0.2 m, on each side, so that every sample inside the box has four neighbours and
// the corners of the map lie outside the outline.
//
// The field is found by spreading each edge from the cells it crosses to their neighbours, nearest first: a
// cell knows the true distance to an edge that reached it, and that is nearly always the nearest edge.
class DistanceMap : public util::Pointee {
  public:
    using Floats = util::Array2D<float, util::VectorPOD<float>>;
    using Vectors = util::Array2D<math::Vec2, util::VectorPOD<math::Vec2>>;

    static constexpr int SIZE = 128;  // cells along each side, whatever the polygon's size

    // `edges` close a counter-clockwise loop; `box` is their tight box. Throws Exception "Bad distance map
    // generated" for an outline that is not what it should be, and BadDataException for edges too short to
    // be told from points.
    DistanceMap(const LineList& edges, const math::OBB2D& box);
    ~DistanceMap() noexcept(false) override;

    // Bilinear samples at a local point, which is drawn to the border of the map from beyond it.
    math::real SampleDistance(math::Vec2 local) const;
    math::Vec2 SampleGradient(math::Vec2 local) const;  // not unit, and zero in places

    const Floats& GetDistMap() const { return m_distMap; }            // m, negative inside
    const Floats& GetPerimeterMap() const { return m_perimeterMap; }  // m, 0 to GetPerimeter()
    const Vectors& GetGradientMap() const { return m_gradientMap; }   // unit, outward, in local axes
    const math::OBB2D& GetBox() const { return m_box; }               // what the map covers
    const math::TMatrix3<float>& GetLocalToMap() const { return m_localToMap; }
    const math::TMatrix3<float>& GetMapToLocal() const { return m_mapToLocal; }
    math::real GetPerimeter() const { return m_perimeter; }  // m, length of the outline

  private:
    // Where a local point lies: the cell below and left of it, and how far into the next ones.
    struct Place {
        int i, j, nextI, nextJ;
        math::real fx, fy;  // 0 to 1
    };

    void MakeTransforms(const math::OBB2D& box);
    void CalcGradient();
    Place Locate(math::Vec2 local) const;
    template <class T>
    static T Blend(const T* cells, const Place& place);

    math::OBB2D m_box;
    math::TMatrix3<float> m_localToMap;
    math::TMatrix3<float> m_mapToLocal;
    Floats m_distMap;
    Floats m_perimeterMap;
    Vectors m_gradientMap;
    math::real m_perimeter = 0;
};

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

template <class T>
T DistanceMap::Blend(const T* cells, const Place& p) {
    const T low = cells[p.j * SIZE + p.i] * (1 - p.fx) + cells[p.j * SIZE + p.nextI] * p.fx;
    const T high = cells[p.nextJ * SIZE + p.i] * (1 - p.fx) + cells[p.nextJ * SIZE + p.nextI] * p.fx;
    return low * (1 - p.fy) + high * p.fy;
}

inline math::real DistanceMap::SampleDistance(math::Vec2 local) const {
    return Blend(m_distMap.GetData().data(), Locate(local));
}

inline math::Vec2 DistanceMap::SampleGradient(math::Vec2 local) const {
    return Blend(m_gradientMap.GetData().data(), Locate(local));
}

}  // namespace physics
