#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "math/Matrix3.h"
#include "math/OBB2D.h"
#include "math/Vector.h"
#include "physics/DistanceMap.h"
#include "physics/Geom.h"
#include "physics/Line.h"
#include "physics/OutlinePieces.h"
#include "physics/OutlineSides.h"
#include "physics/SidePoints.h"
#include "util/SharedPtr.h"

namespace physics {

// Any simple polygon, convex or concave. It is never cut into convex pieces: its signed distance field is
// sampled into a map when something first comes near, and from then on the questions whether a point is
// inside and which way is out are bilinear look-ups, whatever the number of vertices. Contacts of polygons
// ask the sides themselves where they are near (OutlineSides).
//
// Local coordinates have the centroid at the origin; the geom starts where the vertices were. Inside its
// tight box (m_obb) the distance comes from the map; outside it is the distance to that box, which bounds
// the true one and is positive. A rectangle is its tight box, and its distances need no map. A normal exists
// inside the box only.
class Polygon : public Geom {
  public:
    // `outline` in world coordinates, in either sense, without or with a closing vertex. Repeated vertices
    // are dropped. Throws BadDataException: "Bad polygon" for fewer than 3 vertices or an outline without
    // area, "Self-intersecting polygon".
    explicit Polygon(const math::Vec2List& outline, const Surface& surface = {});
    // The copy shares the map, so it costs little.
    Polygon(const Polygon& other);
    ~Polygon() noexcept(false) override;

    math::real GetDistance(math::Vec2 point) const override { return Distance(point); }
    math::Vec2 GetNormal(math::Vec2 point) const override;
    math::real GetArea() const override { return m_area; }
    math::real GetInertiaSansMass() const override { return m_inertiaSansMass; }
    math::BoundingBox2f GetBoundingBox() const override;
    math::OBB2D GetOBB() const override { return m_worldOBB; }
    math::Vec3 GetBoundingCircle() const override { return m_worldBoundingCircle; }
    void SetTransform(const math::RigidTransform& transform) override;

    // Counter-clockwise. Edge i runs from vertex i to the next; the last closes the loop.
    const math::Vec2List& GetVertices() const { return m_vertices; }
    LineList GetLines() const;
    const math::Vec2List& GetWorldVertices() const { return m_worldVertices; }
    const LineList& GetWorldLines() const;
    // What is no part of the outline, but touched at like its vertices; see SidePoints.h.
    const util::VectorPOD<SidePoint>& GetSidePoints() const { return m_sidePoints; }
    const math::Vec2List& GetWorldSidePoints() const;
    // The outline in pieces about as long as `length`, local; remembered for the length last asked for.
    const OutlinePieces& GetPieces(math::real length) const;

    const math::OBB2D& GetWorldOBB() const { return m_worldOBB; }
    const math::Vec3& GetWorldBoundingCircle() const { return m_worldBoundingCircle; }
    const math::OBB2D& GetLocalOBB() const { return m_obb; }

    // The map, for drawing. Cell (i, j) has its centre at the map point (i, j).
    const DistanceField::Cells& GetDistMap() const { return m_map->GetDistMap(); }
    void BuildMapAhead() const { m_map->BuildAhead(); }
    const math::TMatrix3<float>& GetMapToLocal() const { return m_map->GetMapToLocal(); }
    const math::OBB2D& GetMapOBB() const { return m_map->GetBox(); }

    // Whether `other` lies wholly inside this polygon, as far as the vertices of both tell.
    bool Encloses(const Polygon& other) const;
    // Pairs of a given line and an edge that cross.
    size_t CountIntersections(const LineList& lines) const;

    // The distance at any point: from the map as far as it reaches, some way round the tight box; beyond,
    // and of a rectangle everywhere, that from the tight box.
    math::real GetFieldDistance(math::Vec2 point) const;

    // GetDistance without the virtual call, for loops over vertices.
    math::real Distance(math::Vec2 point) const;
    // For a point in the tight box: whether it is inside, and if so its distance, below 0, and the normal.
    // Exact near the outline, and anywhere in shapes of few sides.
    bool FindInside(math::Vec2 point, math::real& distance, math::Vec2& normal) const;
    // The same of BLOCK points, as bits.
    static constexpr size_t BLOCK = OutlineSides::POINTS;
    uint32_t FindInside(const math::Vec2* points, math::real* distances, math::Vec2* normals) const;
    // For one that is a corner of another outline, with directions in the world: the nearest side it points
    // at, if one is close.
    bool FindOpposite(math::Vec2 point, const OutlineSides::Corner& corner, math::real& distance,
                      math::Vec2& normal) const;
    // Which of FEW points have a field distance below a limit, as bits; the distances of these, and the unit
    // directions in which they rise, zero where there is none.
    static constexpr uint32_t FEW = 4;
    uint32_t FindNear(const math::Vec2* points, math::real limit, math::real* distances,
                      math::Vec2* normals) const;
    // Which of FEW points have one below `reach`, and less still so far along their unit directions; the
    // distances of these.
    uint32_t FindGaps(const math::Vec2* points, const math::Vec2* directions, math::real reach,
                      math::real* gaps) const;

  private:
    math::Vec2 CalcAttribs();
    void CheckSelfIntersection() const;
    struct InBox;
    struct Block;
    InBox TurnToBox(const math::Vec2* directions) const;
    InBox ToBox(const math::Vec2* points) const;
    uint32_t FindMapped(const InBox& points) const;
    void StoreNormals(Float4 x, Float4 y, math::Vec2* normals) const;
    Float4 GetFieldDistances(const InBox& points) const;
    DistanceMap::FourSlopes GetFieldSlopes(const InBox& points) const;
    DistanceMap::FourSlopes GetBoxSlopes(const InBox& points) const;
    void TakeWaysOut(const InBox& points, uint32_t isMapped, DistanceMap::FourSlopes& slopes) const;

    math::Vec2List m_vertices;
    math::Vec2List m_worldVertices;
    mutable LineList m_worldLines;  // empty until asked for after a move
    util::VectorPOD<SidePoint> m_sidePoints;
    mutable math::Vec2List m_worldSidePoints;  // empty until asked for after a move
    mutable OutlinePieces m_pieces;
    mutable math::real m_pieceLength = 0;  // m, of m_pieces; 0 without them
    math::Vec3 m_boundingCircle;           // x, y, radius
    math::Vec3 m_worldBoundingCircle;      // x, y, radius
    math::OBB2D m_obb;                     // tight, local
    math::OBB2D m_worldOBB;
    bool m_isRectangle = false;         // all that lies in m_obb
    math::RigidTransform m_localToBox;  // into the frame of m_obb: its centre the origin, its axes the axes
    math::RigidTransform m_worldToBox;
    util::SharedPtr<const DistanceMap> m_map;     // never changes; shared by copies
    util::SharedPtr<const OutlineSides> m_sides;  // the same
    math::real m_area = 0;                        // m^2, above 0
    math::real m_inertiaSansMass = 0;             // m^2, about the centroid, per unit mass
};

// Whether two polygons are near enough for a vertex of one to lie in the other: by bounding circles, by the
// axes of their boxes, and by the distance of each circle's centre from the other polygon.
bool BoundsOverlap(const Polygon& a, const Polygon& b);
// Whether no axis of either box separates them by more than a distance. Touching counts as overlapping.
bool BoxesOverlap(const math::OBB2D& a, const math::OBB2D& b, math::real distance = 0);
// Half the extent of a box along a unit vector.
math::real GetReach(const math::OBB2D& box, math::Vec2 direction);

// The closed outline with points put in so that no edge is longer than `maxDist`. Edges without length
// vanish. Throws BadDataException for an outline with non-finite points.
math::Vec2List AssertMaxDist(const math::Vec2List& outline, math::real maxDist);

// An axis-aligned box of 16 vertices. Besides the corners each side has one in the middle and one just
// beside either corner, so that a box at rest on another stands on several points.
PolygonPtr MakeBoxPolygon(math::real minX, math::real minY, math::real maxX, math::real maxY);

inline math::real Polygon::Distance(math::Vec2 point) const {
    const math::Vec2 p = m_worldToBox(point);
    const math::real dx = std::fabs(p.x) - m_obb.halfSize.x;
    const math::real dy = std::fabs(p.y) - m_obb.halfSize.y;
    if (dx > 0) return dy > 0 ? std::sqrt(dx * dx + dy * dy) : dx;
    if (dy > 0) return dy;
    if (m_isRectangle) return std::max(dx, dy);
    return m_map->SampleDistance(p);
}

}  // namespace physics
