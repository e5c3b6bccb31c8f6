#include "physics/Integration.h"

#include "math/Geometry.h"
#include "physics/Body.h"

namespace physics {

template <class F>
static void ForEachMovable(const AbstractBodyList& bodies, F move) {
    for (AbstractBody* const body : bodies) {
        if (!body->IsImmovable()) move(*body);
    }
}

void IntegrateVelocities(const AbstractBodyList& bodies, math::real dt) {
    ForEachMovable(bodies, [dt](AbstractBody& body) {
        body.m_vel += dt * body.m_force * body.m_massInv;
        body.m_angVel += dt * body.m_torque * body.m_inertiaInv;
    });
}

void IntegratePlaces(const AbstractBodyList& bodies, math::real dt) {
    ForEachMovable(bodies, [dt](AbstractBody& body) {
        const math::real t = dt * body.m_moveShare;
        body.m_pos += t * body.m_vel;
        body.m_angle = math::WrapAngle(body.m_angle + t * body.m_angVel);
        body.UpdateGeoms();
    });
}

}  // namespace physics
