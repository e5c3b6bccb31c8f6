#pragma once

#include <algorithm>
#include <cstdint>

#include "math/BoundingBox.h"
#include "math/Geometry.h"
#include "math/Vector.h"
#include "physics/Geom.h"
#include "physics/LooseBox.h"
#include "physics/NeighborGrid.h"
#include "physics/Polygon.h"
#include "physics/WaterSums.h"

// Which drops of water are near a shape: what the water's pressure and its contacts both ask.
namespace physics {

// How a point lies to a shape.
struct Probe {
    math::real distance;  // m, negative inside
    math::Vec2 normal;    // unit, out of the shape; zero where the shape has none
};

// Spacings of drops at rest: in gaps between shapes up to the one there are no drops, in those from the other
// on only drops. Where both count, what lies on drops is carried twice: so they are close to each other.
constexpr math::real NARROW_GAP = 0.8f, WIDE_GAP = 0.85f;

// The share of the water in a gap that drops stand for.
inline math::real GetDropShare(math::real gap, math::real spacing) {
    return std::min(std::max((gap / spacing - NARROW_GAP) / (WIDE_GAP - NARROW_GAP), 0.0f), 1.0f);
}

// The probes tell whether a point is closer than `reach` to the shape, and how it lies if so.
inline bool ProbePoint(const Circle& circle, math::Vec2 point, math::real reach, Probe& probe) {
    const math::Vec2 out = point - circle.GetPos();
    probe = {math::Length(out) - circle.m_radius, math::Normalized(out)};
    return probe.distance < reach;
}

inline bool ProbePoint(const Plane& plane, math::Vec2 point, math::real reach, Probe& probe) {
    probe = {plane.Distance(point), plane.GetNormal()};
    return probe.distance < reach;
}

// Calls visit(place, probe) for those of the points that are closer than `reach` to the shape.
template <class Shape, class Visit>
void ProbePoints(const Shape& shape, const math::Vec2* points, const uint32_t* places, uint32_t count,
                 math::real reach, Visit visit) {
    Probe probe;
    for (uint32_t k = 0; k < count; ++k) {
        if (ProbePoint(shape, points[places[k]], reach, probe)) visit(places[k], probe);
    }
}

template <class Visit>
void ProbePoints(const Polygon& polygon, const math::Vec2* points, const uint32_t* places, uint32_t count,
                 math::real reach, Visit visit) {
    constexpr uint32_t FEW = Polygon::FEW;
    math::Vec2 few[FEW], normals[FEW];
    math::real distances[FEW];
    for (uint32_t first = 0; first < count; first += FEW) {
        const uint32_t here = std::min(count - first, FEW);
        for (uint32_t k = 0; k < FEW; ++k) few[k] = points[places[first + std::min(k, here - 1)]];
        uint32_t isNear = polygon.FindNear(few, reach, distances, normals) & ((1u << here) - 1);
        for (; isNear != 0; isNear &= isNear - 1) {
            const auto k = static_cast<uint32_t>(__builtin_ctz(isNear));
            visit(places[first + k], Probe{distances[k], normals[k]});
        }
    }
}

// `keep` lists the places of a stretch that may be near the shape; all of these lie in the box. Calls
// visit(place, probe) for each point that is, in the order of the grid.
template <class Shape, class Keep, class Visit>
void VisitKept(const NeighborGrid& grid, const Shape& shape, const math::BoundingBox2f& box, math::real reach,
               Keep keep, Visit visit) {
    constexpr uint32_t BLOCK = 256;
    const math::Vec2* const points = grid.GetSortedPoints();
    uint32_t places[BLOCK + NeighborGrid::PADDING];
    uint32_t count = 0;
    grid.VisitBox(box, [&](uint32_t begin, uint32_t end) {
        while (begin < end) {
            const uint32_t stop = begin + std::min(BLOCK - count, end - begin);
            count += keep(NeighborGrid::Stretch{begin, stop}, places + count);
            begin = stop;
            if (count < BLOCK) continue;
            ProbePoints(shape, points, places, count, reach, visit);
            count = 0;
        }
    });
    ProbePoints(shape, points, places, count, reach, visit);
}

// Calls visit(place, probe) for each point closer than `reach` to the shape, in the order of the grid.
template <class Visit>
void VisitNear(const NeighborGrid& grid, const Polygon& polygon, math::real reach, Visit visit) {
    math::BoundingBox2f box = LooseBox(polygon.GetWorldOBB());
    box.Grow(reach);
    const auto keep = [&](NeighborGrid::Stretch stretch, uint32_t* list) {
        return GetWaterSums().keepInBox(grid.GetSortedPoints(), stretch, box, list);
    };
    VisitKept(grid, polygon, box, reach, keep, visit);
}

template <class Visit>
void VisitNear(const NeighborGrid& grid, const Circle& circle, math::real reach, Visit visit) {
    const math::real radius = circle.m_radius + reach;
    const auto keep = [&](NeighborGrid::Stretch stretch, uint32_t* list) {
        return GetWaterSums().keepNear(grid.GetSortedPoints(), stretch, circle.GetPos(), radius * radius,
                                       list);
    };
    VisitKept(grid, circle, LooseBox(circle.GetPos(), math::Vec2(radius, radius)), reach, keep, visit);
}

template <class Visit>
void VisitNear(const NeighborGrid& grid, const Plane& plane, math::real reach, Visit visit) {
    const auto keep = [&](NeighborGrid::Stretch stretch, uint32_t* list) {
        return GetWaterSums().keepBelow(grid.GetSortedPoints(), stretch, plane.GetPlane(), reach, list);
    };
    VisitKept(grid, plane, plane.GetBoundingBox(), reach, keep, visit);
}

// The same for a shape of any kind; one that collides with nothing is near nothing.
template <class Visit>
void VisitNearGeom(const NeighborGrid& grid, const Geom& geom, math::real reach, Visit visit) {
    switch (geom.GetKind()) {
        case Geom::Kind::CIRCLE:
            return VisitNear(grid, static_cast<const Circle&>(geom), reach, visit);
        case Geom::Kind::POLYGON:
            return VisitNear(grid, static_cast<const Polygon&>(geom), reach, visit);
        case Geom::Kind::PLANE:
            return VisitNear(grid, static_cast<const Plane&>(geom), reach, visit);
        case Geom::Kind::OTHER:
            return;
    }
}

}  // namespace physics
