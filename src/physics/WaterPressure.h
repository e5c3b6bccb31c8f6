#pragma once

#include <cstddef>
#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/NeighborLists.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds the pressures at the end of a step, and what they do to drops and bodies: an implicit density solve.
//
// An explicit pressure must be soft to be stable at the length of a step, and soft water carries nothing: it
// is packed several times too dense at the floor, and repels so evenly that it sets like a jelly. Here each
// pressure answers the density that the drop will have at the end of the step, with what all pressures do in
// it, so water may be as stiff as water is. Bodies take part: what is pushed away eases the pressure.
//
// Drops are named by their place in the order of the grid. Equations: WaterPressure.cpp. All arrays keep
// their memory.
class WaterPressure {
  public:
    struct Settings {
        math::real dt;         // s, above 0
        math::real density;    // kg/m^2, at rest
        math::real stiffness;  // m^2/s^2, pressure per density above that at rest; above 0
        math::real mass;       // kg, of a drop
        math::real longest;    // m, that pressure may move a drop in one step
        int sweeps;
    };
    // Figures of pairs, in rows as WaterSums takes them. `gradients`: kg/m^3, by which the neighbour's moving
    // away lowers the density of the drop. `pushes` is what their pressures act along.
    struct Pairs {
        NeighborRows lists;
        const math::real* gradients;
        const math::real* pushes;
    };
    // A drop near a body.
    struct Touch {
        uint32_t drop;
        uint32_t body;        // its place in the list of bodies
        math::Vec2 gradient;  // kg/m^3, by which the drop's moving away from the body lowers its density
        math::Vec2 push;      // what its pressure acts along
        math::Vec2 arm;       // m, from the body's position to the drop
    };
    // Arrays per drop, filled up to whole groups.
    struct Drops {
        util::VectorPOD<math::Vec2> vels;       // m/s, at the end of the step without pressure
        util::VectorPOD<math::real> densities;  // kg/m^2, at its start
        util::VectorPOD<math::real> pressures;  // N/m; before the solve a guess: those of the last step
        util::VectorPOD<math::Vec2> shifts;     // m: what the pressures add to the way of this step
    };

    using Touches = util::VectorPOD<Touch>;

    // `perPressure` gives, per drop, the share of its pressure that acts along the pushes. Forces are added
    // to the movable bodies; drops get their shifts.
    void Solve(const Settings& settings, const Pairs& pairs, const Touches& touches, const BodyList& bodies,
               const math::real* perPressure, Drops& drops);

  private:
    struct BodyState {
        math::Vec2 vel;  // m/s, without pressure, of the body
        math::real angVel;
        math::real massInv;
        math::real inertiaInv;
        math::Vec2 shift;   // m, as of a drop
        math::real turn;    // rad
        math::real pushes;  // sums over its touches, for the bound on what they do to each other
        math::real torques;
    };

    void TakeBodies(const Settings& settings, const BodyList& bodies);
    void TakeMovingTouches(const Touches& touches);
    void Predict(const Settings& settings, const Pairs& pairs, const Touches& touches, const Drops& drops);
    void CalcResponses(const Settings& settings, const Touches& touches, const math::real* perPressure);
    void AddBodyResponses(const Settings& settings, const math::real* perPressure);
    void PushBodies(const Settings& settings);
    void AddBodyChanges();
    void Correct(const Settings& settings, Drops& drops);
    void Finish(const Settings& settings, const BodyList& bodies, Drops& drops) const;

    util::VectorPOD<math::real> m_expected;   // kg/m^2 per drop: density at the end without pressure
    util::VectorPOD<math::real> m_responses;  // per drop: by how much its pressure lowers its density
    util::VectorPOD<math::real> m_previous;   // per drop: pressure before the last sweep
    util::VectorPOD<math::real> m_changes;    // kg/m^2 per drop, by the shifts
    util::VectorPOD<math::real> m_shares;     // per drop: what its pressure does along the pushes, times dt^2
    util::VectorPOD<math::real> m_weights;    // per drop: that times its pressure
    util::VectorPOD<math::Vec2> m_gradients;  // per drop, sums over pairs and touches
    util::VectorPOD<math::Vec2> m_pushes;
    util::VectorPOD<BodyState> m_bodies;
    Touches m_movingTouches;  // those of bodies that pressure moves
};

}  // namespace physics
