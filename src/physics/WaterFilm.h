#pragma once

#include <cstdint>

#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/CollisionFilter.h"
#include "physics/Fwd.h"
#include "physics/Geom.h"
#include "physics/NeighborGrid.h"
#include "physics/OutlinePieces.h"
#include "physics/PairSweep.h"
#include "physics/WaterPressure.h"
#include "physics/WaterTouches.h"
#include "util/VectorPOD.h"

namespace physics {

// Water in gaps that are too narrow for a drop. Without it nothing presses from below on a box that lies on
// the floor of a pool, and no box would ever rise from there.
//
// Outlines are looked at in pieces. One that has another shape close before it is sealed: no drop gets there.
// Water at rest has the same head everywhere it is connected, whatever the way,
//   head = p - rho0 g.x,
// so sealed pieces take over the head of the nearest open end that lies in the water, which is that of the
// drops there, along the outline and across the gap. What follows for the piece is pushed along its normal:
//   force = -n length max(0, head + rho0 g.x),
// times the share of the gap's water that drops do not stand for (GetDropShare).
//
// Kept from step to step for its arrays; holds no object between calls.
class WaterFilm {
  public:
    struct Settings {
        math::Vec2 gravity;  // m/s^2
        math::real density;  // kg/m^2, of water at rest
        math::real spacing;  // m, of drops at rest
    };

    // Drops in the order of the grid. Those that lie on a shape have more pressure than the water round them
    // and count only where there are no others.
    struct Water {
        const NeighborGrid& grid;
        const WaterPressure::Drops& drops;
        const util::VectorPOD<uint8_t>& liesOnShape;
        const WaterTouches& touches;  // among the same bodies
    };

    // Adds the forces to the movable bodies.
    void Apply(const BodyList& bodies, const Water& water, const Settings& settings);

  private:
    static constexpr uint32_t NONE = 0xFFFFFFFFu;

    struct Shape {
        AbstractBody* body;
        uint32_t place;  // of the body in the list of bodies
        Geom* geom;
        uint32_t flags;
        bool isMovable;
        uint32_t begin;  // its pieces in m_pieces, round the outline; none until asked for
        uint32_t end;

        Geom* GetGeom() const { return geom; }
    };
    struct Piece {
        math::real length;
        uint32_t shape;
        uint32_t next;     // round the outline
        uint32_t last;     // the one before
        uint32_t partner;  // the piece across the gap, or NONE
        math::real share;  // of the water before it that drops do not stand for
        bool isSealed;
        bool isReached;  // its head is known
        math::real head;
    };

    void GatherShapes(const BodyList& bodies, const Water& water);
    void AddShape(AbstractBody& body, uint32_t place, Geom& geom, const math::BoundingBox2f& box);
    void SealPairs();
    void SealPair(uint32_t a, uint32_t b);
    void CutOutline(uint32_t shape);
    void AddPieces(const OutlinePieces& pieces, const math::RigidTransform& place, uint32_t shape);
    void Seal(const Shape& shape, const Shape& other);
    void SealPiece(uint32_t piece, math::real gap, const Shape& other);
    uint32_t FindPartner(uint32_t piece, const Shape& shape) const;
    void FindEnds(const Water& water);
    bool IsDry(uint32_t piece, math::real head) const;
    bool FillPocket(uint32_t first);
    bool FindHeadBeside(uint32_t piece, const Water& water, math::real& head) const;
    math::real GetHead(math::Vec2 pos, math::real pressure) const;
    void SpreadHeads();
    void Follow(uint32_t piece, math::real head);
    void Reach(uint32_t piece, math::real head);
    void AddForces() const;

    Settings m_settings = {};
    math::real m_reach = 0;  // m, across the widest gap that is too narrow for drops
    util::VectorPOD<Shape> m_shapes;
    util::VectorPOD<Shape> m_planes;
    util::VectorPOD<Piece> m_pieces;
    util::VectorPOD<math::Vec2> m_middles;  // of the pieces, and some more to fill up the last few
    util::VectorPOD<math::Vec2> m_normals;  // as many
    util::VectorPOD<uint32_t> m_queue;      // pieces with a head, nearest to the ends first
    PairSweep m_sweep;                      // over m_shapes
};

}  // namespace physics
