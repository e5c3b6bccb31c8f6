#pragma once

#include <cstdint>
#include <vector>

#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/Geom.h"
#include "util/Pointee.h"
#include "util/VectorPOD.h"

namespace physics {

// What moves: the state that the integrator, the solver, joints and tools share, for rigid bodies and drops
// of water alike. The state is plain data, since all of those both read and write it.
//
// A new one is immovable until its owner gives it mass.
class AbstractBody : public util::Pointee {
  public:
    AbstractBody();
    // Copies place and motion. The copy has an ID of its own and is neither held nor given mass.
    AbstractBody(const AbstractBody& other);
    AbstractBody& operator=(const AbstractBody&) = delete;
    ~AbstractBody() noexcept(false) override;

    // Pushes the place down to the geoms. To be called whenever m_pos or m_angle has changed.
    virtual void UpdateGeoms() {}
    // Too far out or too fast to be worth keeping. A NaN in the state does not count: the limits are
    // strict comparisons.
    bool IsOutOfRange() const;

    uint32_t GetID() const { return m_id; }  // creation number, counted over all bodies and particles

    bool IsImmovable() const { return m_held || m_massInv == 0; }
    // As constraints and springs see them: a held body weighs infinitely much.
    math::real GetMassInv() const { return m_held ? 0 : m_massInv; }
    math::real GetInertiaInv() const { return m_held ? 0 : m_inertiaInv; }

    // Taking hold stops the body; letting go changes nothing else.
    void SetHeld(bool held);

    // What each pass over the bodies of a step reads and writes stands together.
    math::Vec2 m_pos;             // m, centre of mass
    math::Vec2 m_vel;             // m/s
    math::Vec2 m_force;           // N, gathered during a step
    math::real m_angle = 0;       // rad, in (-pi, pi] after UpdateGeoms
    math::real m_angVel = 0;      // rad/s
    math::real m_torque = 0;      // N m, gathered during a step
    math::real m_massInv = 0;     // of m_mass the inverse
    math::real m_inertiaInv = 0;  // of m_inertia
    bool m_held = false;          // while a tool holds the body; SetHeld also stops it
    uint32_t m_index = 0;         // place in the list of bodies that a step works on; set by who lists them
    math::real m_moveShare = 1;   // of the step's motion, where something stands in the way; see SweptMotion

    math::real m_inertia;   // kg m^2, infinite in a new body
    math::real m_mass;      // kg, infinite in a new body
    math::real m_area = 0;  // m^2, for buoyancy

    math::Vec2 m_lastPos;  // m, after the last step that ended finite, and the angle; see IntegratePlaces
    math::real m_lastAngle = 0;  // rad

    // What the solver has added to the velocities so far in this step, of bodies with constraints.
    math::Vec2 m_deltaVel;
    math::real m_deltaAngVel = 0;

    util::VectorPOD<Constraint*> m_constraints;  // touching this body; filled by the prioritized solver only

  private:
    uint32_t m_id;

    static uint32_t s_nextID;  // starts at 0 and never goes back: the world body is 0
};

// A geom and its place on a body.
struct BodyPart {
    GeomPtr geom;
    math::RigidTransform toGeom;    // body space to geom-local
    math::RigidTransform fromGeom;  // geom-local to body space
};

// A rigid body: the sum of its geoms.
//
// Geoms exist before they have a body and stand at their place in the world. SetGeoms adopts them where
// they stand: the body's frame gets angle 0 and its origin at their centre of mass, and mass and inertia
// follow from their areas and densities. From then on the body's place moves the geoms, through
// UpdateGeoms. A change of a geom's density or shape is taken in by RefreshGeoms (Geom::UpdateBody).
//
// However the shape of a body changes, each piece of matter goes on as it moved: with v, w and the centre x
// of before, a piece whose centre of mass is x' moves with v + w x (x' - x) and turns with w.
//
// Body and geoms own each other. SetGeoms with an empty set breaks that cycle; Simulation::RemoveBody
// does so. A body without geoms is a harmless unit mass that IsBad reports.
class Body : public AbstractBody {
  public:
    Body();
    explicit Body(const GeomPtr& geom);
    // Copies place, motion and transforms, but no geoms.
    Body(const Body& other);
    ~Body() noexcept(false) override;

    // Makes the set the whole shape. A geom without positive mass, area and inertia or with a non-finite
    // place is left out with a warning. The motion is that of the same rigid motion at the new centre.
    void SetGeoms(const GeomSet& geoms);
    void SetGeom(const GeomPtr& geom);
    void AddGeoms(const GeomSet& geoms);
    void AddGeom(const GeomPtr& geom);
    void RefreshGeoms();

    // The geoms leave for a new body, which goes on as they moved; so does what stays. The new body is
    // outside the simulation.
    BodyPtr Split(const GeomSet& leaving);
    // Takes all geoms of the other body over, which keeps none. Momentum and angular momentum stay, unless
    // one of the two is immovable: then the result rests.
    void Absorb(Body& other);

    // Frame, parts with the places of their geoms, mass and motion, to the bit.
    struct State {
        std::vector<BodyPart> parts;
        std::vector<GeomPlace> places;  // of the parts' geoms
        math::RigidTransform transform;
        math::Vec2 pos, vel, force;
        math::real angle, angVel, torque;
        math::real mass, massInv, inertia, inertiaInv, area;
    };
    State GetState() const;
    void SetState(const State& state);

    void UpdateGeoms() override;
    // Derives the frame anew from the places of the geoms, as a file would give them: after it a saved and
    // loaded body is the same to the bit. To be called when a hand lets go of the body.
    void Settle();
    // Out of range, or without geoms.
    bool IsBad() const { return IsOutOfRange() || m_parts.empty(); }
    math::real GetCoreRadius() const;  // the least of its geoms'

    const GeomSet& GetGeoms() const { return m_geoms; }
    const std::vector<BodyPart>& GetParts() const { return m_parts; }         // in the order of GetGeoms
    const math::RigidTransform& GetTransform() const { return m_transform; }  // body space to world
    const math::RigidTransform& GetInvTransform() const { return m_invTransform; }  // world to body space

    bool m_inWorld = false;  // whether Simulation lists the body; set by it alone

  private:
    void DetachGeoms();
    void BuildFrom(const GeomSet& geoms);
    void BecomeUnitMass();
    GeomSet SumUpMass(const GeomSet& geoms);
    void PlaceFrame();
    void AttachGeom(const GeomPtr& geom);
    void FinishInertia();
    void CheckParts() const;  // that the geoms know whose they are

    math::RigidTransform m_transform;
    math::RigidTransform m_invTransform;
    std::vector<BodyPart> m_parts;  // in the order of m_geoms
    GeomSet m_geoms;
    mutable math::real m_coreRadius = UNKNOWN;  // m, see GetCoreRadius

    static constexpr math::real UNKNOWN = -1;
};

inline bool AbstractBody::IsOutOfRange() const {
    constexpr math::real RANGE = 100000;  // m, m/s and rad/s
    constexpr math::real RANGE_SQUARED = RANGE * RANGE;
    return math::LengthSquared(m_pos) > RANGE_SQUARED || math::LengthSquared(m_vel) > RANGE_SQUARED ||
           m_angVel > RANGE || m_angVel < -RANGE;
}

// The body that a geom belongs to; null for no geom, one outside the world, and a drop's.
BodyPtr BodyOf(const GeomPtr& geom);

}  // namespace physics
