#pragma once

#include <cstdint>

#include "physics/Body.h"
#include "physics/Geom.h"

// Who may touch whom, asked of records that have the fields `flags` and `body` and the operation GetGeom.
namespace physics {

// Bits of a record's flags.
enum CollisionFlags : uint32_t {
    LAYERS = 7,           // the collision layers that take part
    IMMOVABLE = 8,        // the body cannot move
    HAS_NO_COLLIDE = 16,  // m_noCollide is not empty
};

inline uint32_t GetCollisionFlags(const AbstractBody& body, const Geom& geom) {
    uint32_t flags = geom.m_collideSet & LAYERS;
    if (body.IsImmovable()) flags |= IMMOVABLE;
    if (!geom.m_noCollide.empty()) flags |= HAS_NO_COLLIDE;
    return flags;
}

// The barred partners are asked for of the first geom only; hinges enter both directions.
template <class RecA, class RecB>
bool MayTouch(const RecA& a, const RecB& b) {
    if ((a.flags & b.flags & LAYERS) == 0) return false;
    if (a.body == b.body) return false;
    if ((a.flags & b.flags & IMMOVABLE) != 0) return false;
    return (a.flags & HAS_NO_COLLIDE) == 0 || a.GetGeom()->m_noCollide.count(b.GetGeom()) == 0;
}

}  // namespace physics
