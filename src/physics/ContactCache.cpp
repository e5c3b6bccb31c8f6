#include "physics/ContactCache.h"

#include <algorithm>

#include "physics/ContactPool.h"

namespace physics {

void ContactCache::Update(const ContactPool& contacts) {
    m_isFilled = false;
    m_next = 0;
    m_entries.clear();
    m_entries.reserve(contacts.size());
    for (const ContactPtr& pointer : contacts) {
        const Contact& contact = *pointer.Get();
        m_entries.push_back({contact.m_id, {contact.m_normalImpulse, contact.m_tangentImpulse}});
    }
}

const ContactCache::Impulses* ContactCache::Find(const ContactID& id) {
    if (m_next >= m_entries.size() || !(m_entries[m_next].id == id)) {
        if (m_entries.empty()) return nullptr;
        if (!m_isFilled) FillTable();
        m_next = m_slots[FindSlot(id)];
        if (m_next == EMPTY) return nullptr;
    }
    return &m_entries[m_next++].impulses;
}

void ContactCache::FillTable() {
    ClearTable();
    for (uint32_t i = 0; i < m_entries.size(); ++i) m_slots[FindSlot(m_entries[i].id)] = i;
    m_isFilled = true;
}

// Where an ID stands, or is to be entered.
uint32_t ContactCache::FindSlot(const ContactID& id) const {
    uint32_t s = FirstSlot(id.hash);
    while (m_slots[s] != EMPTY && !(m_entries[m_slots[s]].id == id)) s = (s + 1) & m_mask;
    return s;
}

void ContactCache::ClearTable() {
    constexpr size_t LEAST = 64;
    size_t size = LEAST;
    while (size < 2 * m_entries.size()) size *= 2;
    m_slots.resize(size);
    std::fill(m_slots.begin(), m_slots.end(), EMPTY);
    m_mask = static_cast<uint32_t>(size - 1);
}

}  // namespace physics
