#include "physics/ContactPool.h"

#include <algorithm>

namespace physics {

Contact& ContactPool::Add(Geom* geomA, Geom* geomB, uint32_t index, math::Vec2 point, math::Vec2 normal,
                          math::real penetration) {
    if (m_size == m_objects.size()) {
        m_objects.emplace_back(new Contact(geomA, geomB, index, point, normal, penetration));
        return *m_objects[m_size++].Get();
    }
    constexpr size_t AHEAD = 6;  // objects, whose memory is asked for before it is needed
    const auto* const next =
        reinterpret_cast<const char*>(m_objects[std::min(m_size + AHEAD, m_objects.size() - 1)].Get());
    for (size_t line = 0; line < sizeof(Contact); line += 64) __builtin_prefetch(next + line, 1);
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
