#include "physics/Integration.h"

#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"

namespace physics {

template <class F>
static void ForEachMovable(const AbstractBodyList& bodies, F move) {
    for (AbstractBody* const body : bodies) {
        if (!body->IsImmovable()) move(*body);
    }
}

static void ClearForces(AbstractBody& body) {
    body.m_force = math::Vec2();
    body.m_torque = 0;
}

void IntegrateVelocities(const AbstractBodyList& bodies, math::real dt, Forces forces) {
    for (AbstractBody* const body : bodies) {
        if (!body->IsImmovable()) {
            body->m_vel += dt * body->m_force * body->m_massInv;
            body->m_angVel += dt * body->m_torque * body->m_inertiaInv;
        }
        if (forces == Forces::CLEAR) ClearForces(*body);
    }
}

void ClearForces(const AbstractBodyList& bodies) {
    for (AbstractBody* const body : bodies) ClearForces(*body);
}

// Asked before the angle is wrapped, which makes a number of anything.
static bool IsFinite(const AbstractBody& body) {
    return std::isfinite((body.m_pos.x + body.m_pos.y + body.m_angle) +
                         (body.m_vel.x + body.m_vel.y + body.m_angVel));
}

static void PutBack(AbstractBody& body) {
    body.m_pos = body.m_lastPos;
    body.m_angle = body.m_lastAngle;
    body.m_vel = math::Vec2();
    body.m_angVel = 0;
}

int IntegratePlaces(const AbstractBodyList& bodies, math::real dt) {
    int putBack = 0;
    ForEachMovable(bodies, [dt, &putBack](AbstractBody& body) {
        const math::real t = dt * body.m_moveShare;
        body.m_pos += t * body.m_vel;
        body.m_angle += t * body.m_angVel;
        if (IsFinite(body)) {
            body.m_angle = math::WrapAngle(body.m_angle);
            body.m_lastPos = body.m_pos;
            body.m_lastAngle = body.m_angle;
        } else {
            PutBack(body);
            ++putBack;
        }
        body.UpdateGeoms();
    });
    return putBack;
}

}  // namespace physics
