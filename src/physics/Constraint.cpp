#include "physics/Constraint.h"

#include "physics/Body.h"
#include "physics/PointMotion.h"

namespace physics {

void Constraint::ApplyImpulse(math::Vec2 p) {
    ApplyImpulsePair(*m_bodies[0], *m_bodies[1], m_r[0], m_r[1], p);
}

bool Constraint::HasMovableBody() const {
    return m_bodies[0] != nullptr && m_bodies[1] != nullptr &&
           !(m_bodies[0]->IsImmovable() && m_bodies[1]->IsImmovable());
}

}  // namespace physics
