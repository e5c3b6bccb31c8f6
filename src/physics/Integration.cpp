#include "physics/Integration.h"

#include "math/Geometry.h"
#include "physics/Body.h"

namespace physics {

static void MoveVelocity(AbstractBody& body, math::real dt) {
    body.m_vel += dt * body.m_force * body.m_massInv;
    body.m_angVel += dt * body.m_torque * body.m_inertiaInv;
}

static void MovePosition(AbstractBody& body, math::real dt) {
    body.m_pos += dt * body.m_vel;
    body.m_angle = math::WrapAngle(body.m_angle + dt * body.m_angVel);
    body.UpdateGeoms();
}

template <class F>
static void ForEachMovable(const AbstractBodyList& bodies, F move) {
    for (AbstractBody* const body : bodies) {
        if (!body->IsImmovable()) move(*body);
    }
}

void Integrate(const AbstractBodyList& bodies, const StepSettings& settings,
               const std::function<void()>& solve) {
    const math::real h = settings.timeDelta;
    if (settings.leapFrog) {
        ForEachMovable(bodies, [h](AbstractBody& body) { MoveVelocity(body, h / 2); });
        solve();
        ForEachMovable(bodies, [h](AbstractBody& body) {
            MoveVelocity(body, h / 2);
            MovePosition(body, h);
        });
    } else {
        solve();
        ForEachMovable(bodies, [h](AbstractBody& body) { MovePosition(body, h); });
        ForEachMovable(bodies, [h](AbstractBody& body) { MoveVelocity(body, h); });
    }
}

}  // namespace physics
