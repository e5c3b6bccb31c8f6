#pragma once

#include <cstdint>

#include "physics/ContactID.h"
#include "physics/ContactPool.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds last step's contact of the same ID. Contacts persist from one step to the next only, by the exact
// key of geoms and feature; where two contacts of a step have one ID, the later is remembered.
//
// An open-addressing table of indices into the step's contacts: it is filled anew at each step, so that it
// knows no removal, and it is never more than half full.
class ContactCache {
  public:
    // Remembers `contacts`, which must stay as they are until the next Update or Clear.
    void Update(const ContactPool& contacts);
    // The remembered contact of this ID, or null.
    const Contact* Find(const ContactID& id) const;
    void Clear();

  private:
    static constexpr uint32_t EMPTY = 0xFFFFFFFFu;

    struct Slot {
        uint32_t contact;  // index in m_contacts, or EMPTY
        uint32_t hash;
    };

    uint32_t FirstSlot(uint32_t hash) const { return (hash ^ (hash >> 15)) & m_mask; }
    bool IsIn(const Slot& slot, const ContactID& id) const;
    void Resize(size_t contacts);

    const ContactPool* m_contacts = nullptr;
    util::VectorPOD<Slot> m_slots;  // a power of two
    uint32_t m_mask = 0;
};

}  // namespace physics
