#include "physics/ContactPool.h"

namespace physics {

Contact& ContactPool::Add(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
                          math::real penetration) {
    if (m_size == m_objects.size()) {
        m_objects.emplace_back(new Contact(geomA, geomB, index, point, normal, penetration));
        return *m_objects[m_size++].Get();
    }
    ContactPtr& slot = m_objects[m_size++];
    if (slot.Get()->GetHandle()->m_strong == 1) {
        slot.Get()->Reset(geomA, geomB, index, point, normal, penetration);
    } else {
        slot = new Contact(geomA, geomB, index, point, normal, penetration);
    }
    return *slot.Get();
}

void ContactPool::Release() {
    m_size = 0;
    m_objects.clear();
}

}  // namespace physics
