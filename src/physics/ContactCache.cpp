#include "physics/ContactCache.h"

namespace physics {

void ContactCache::Update(const ContactPool& contacts) {
    m_contacts = &contacts;
    Resize(contacts.size());
    for (Slot& slot : m_slots) slot.contact = EMPTY;
    for (uint32_t i = 0; i < contacts.size(); ++i) {
        const ContactID& id = contacts[i]->m_id;
        uint32_t s = FirstSlot(id.hash);
        while (m_slots[s].contact != EMPTY && !IsIn(m_slots[s], id)) s = (s + 1) & m_mask;
        m_slots[s] = {i, id.hash};
    }
}

const Contact* ContactCache::Find(const ContactID& id) const {
    if (m_contacts == nullptr) return nullptr;
    for (uint32_t s = FirstSlot(id.hash); m_slots[s].contact != EMPTY; s = (s + 1) & m_mask) {
        if (IsIn(m_slots[s], id)) return (*m_contacts)[m_slots[s].contact];
    }
    return nullptr;
}

void ContactCache::Clear() {
    m_contacts = nullptr;
}

bool ContactCache::IsIn(const Slot& slot, const ContactID& id) const {
    return slot.hash == id.hash && (*m_contacts)[slot.contact]->m_id == id;
}

void ContactCache::Resize(size_t contacts) {
    constexpr size_t LEAST = 64;
    size_t size = m_slots.empty() ? LEAST : m_slots.size();
    while (size < 2 * contacts) size *= 2;
    if (size != m_slots.size()) m_slots.resize(size);
    m_mask = static_cast<uint32_t>(size - 1);
}

}  // namespace physics
