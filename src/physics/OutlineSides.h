#pragma once

#include <cstddef>
#include <cstdint>

#include "math/Geometry.h"
#include "math/Vector.h"
#include "physics/Float8.h"
#include "util/Pointee.h"
#include "util/VectorPOD.h"

namespace physics {

// The straight sides of a simple outline, for the exact answer to whether a point near it lies inside, how
// deep, and which way is out. A distance map knows it to a share of its cells only, and these are as long as
// the shape is: two centimetres in a pole of two metres.
//
// Where there are many sides, a grid over the outline tells which of them can be the nearest. It is made
// when first asked for, and has nothing to say about places deep inside, which are left to the map. Of convex
// outlines of few sides the lines that these lie on tell all, and several points are asked about at a time.
class OutlineSides : public util::Pointee {
  public:
    // Counter-clockwise. The vertices themselves stay with the outline, which hands them to each question.
    explicit OutlineSides(const math::Vec2List& vertices);
    ~OutlineSides() noexcept(false) override;

    // For a point in the outline's box. `distance` is that to the outline, below 0, and `normal` the unit
    // direction to its nearest point, both good for INSIDE only.
    enum class Place { OUTSIDE, INSIDE, DEEP };
    Place Find(const math::Vec2List& vertices, math::Vec2 point, math::real& distance,
               math::Vec2& normal) const;

    // Convex and of few sides.
    bool IsSimple() const { return m_isSimple; }
    // Of a simple one: which of POINTS points lie inside, as bits, with the same distances and normals.
    static constexpr uint32_t POINTS = 8;
    uint32_t FindInside(narrow::Float8 x, narrow::Float8 y, math::real* distances, math::Vec2* normals) const;

    // For a point inside that is a corner of another outline, which goes on along `directions` from there:
    // the nearest of the close sides that the corner points at, if there is one.
    struct Corner {
        Corner(math::Vec2 direction0, math::Vec2 direction1) : directions{direction0, direction1} {}

        math::Vec2 directions[2];  // of any length
        // Whether the outline turns away from a side of this normal, or goes along it.
        bool PointsAt(math::Vec2 normal) const { return Leaves(normal, 0) && Leaves(normal, 1); }

      private:
        bool Leaves(math::Vec2 normal, int i) const;
    };
    bool FindOpposite(const math::Vec2List& vertices, math::Vec2 point, const Corner& corner,
                      math::real& distance, math::Vec2& normal) const;

    size_t GetSideCount() const { return m_starts.size() - 1; }

  private:
    // Sides by number, in rising order.
    struct Choice {
        const uint16_t* begin;
        const uint16_t* end;
    };
    class GridBuilder;
    // What a side lies on. At a distance from it: the inside's is below 0.
    struct Line {
        math::Vec2 normal;  // unit, outward
        math::real offset;  // m, from the origin along the normal

        math::real GetDistance(math::Vec2 point) const { return math::Dot(normal, point) - offset; }
    };

    void MakeLines(const math::Vec2List& vertices);
    Line MakeLine(const math::Vec2List& vertices, size_t side) const;
    Place FindByLines(math::Vec2 point, math::real& distance, math::Vec2& normal) const;
    bool IsReflex(const math::Vec2List& vertices, size_t side) const;
    Choice Choose(const math::Vec2List& vertices, math::Vec2 point) const;

    util::VectorPOD<uint16_t> m_starts;  // first vertices of the sides, and that of the first again
    util::VectorPOD<Line> m_lines;       // of the sides where these are few, else empty
    bool m_isSimple = false;
    math::Vec2 m_low;  // corner of the grid
    math::Vec2 m_tilesPerMetre;
    uint32_t m_blocks = 0;  // of tiles, along each side of the grid; 0 where all sides stand in m_choices

    mutable util::VectorPOD<uint16_t> m_choices;  // empty until asked for
    mutable util::VectorPOD<uint32_t> m_begin;    // in m_choices for each tile, block by block, and the end
};

inline bool OutlineSides::Corner::Leaves(math::Vec2 normal, int i) const {
    constexpr math::real PARALLEL = 0.1f;  // sine of the angle between sides that lie along each other
    const math::real rise = math::Dot(normal, directions[i]);
    return rise >= 0 || rise * rise <= PARALLEL * PARALLEL * math::LengthSquared(directions[i]);
}

}  // namespace physics
