#include "physics/ContactCache.h"

#include <algorithm>

#include "physics/ContactPool.h"

namespace physics {

void ContactCache::Update(const ContactPool& contacts) {
    Resize(contacts.size());
    m_entries.clear();
    m_entries.reserve(contacts.size());
    m_next = 0;
    for (const ContactPtr& pointer : contacts) {
        const Contact& contact = *pointer.Get();
        uint32_t& slot = m_slots[FindSlot(contact.m_id)];
        if (slot != EMPTY) m_entries[slot].isLast = false;
        slot = static_cast<uint32_t>(m_entries.size());
        m_entries.push_back({contact.m_id, {contact.m_normalImpulse, contact.m_tangentImpulse}, true});
    }
}

const ContactCache::Impulses* ContactCache::Find(const ContactID& id) {
    const auto isNext = [&] { return m_entries[m_next].isLast && m_entries[m_next].id == id; };
    if (m_next >= m_entries.size() || !isNext()) {
        if (m_entries.empty()) return nullptr;
        m_next = m_slots[FindSlot(id)];
        if (m_next == EMPTY) return nullptr;
    }
    return &m_entries[m_next++].impulses;
}

// Where an ID stands, or is to be entered.
uint32_t ContactCache::FindSlot(const ContactID& id) const {
    uint32_t s = FirstSlot(id.hash);
    while (m_slots[s] != EMPTY && !(m_entries[m_slots[s]].id == id)) s = (s + 1) & m_mask;
    return s;
}

void ContactCache::Resize(size_t contacts) {
    constexpr size_t LEAST = 64;
    size_t size = LEAST;
    while (size < 2 * contacts) size *= 2;
    m_slots.resize(size);
    std::fill(m_slots.begin(), m_slots.end(), EMPTY);
    m_mask = static_cast<uint32_t>(size - 1);
}

}  // namespace physics
