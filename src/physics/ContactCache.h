#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/ContactID.h"
#include "physics/Fwd.h"
#include "util/VectorPOD.h"

namespace physics {

// Remembers the impulses of last step's contacts. Contacts persist from one step to the next only, by the
// exact key of geoms and feature; where two contacts of a step have one ID, they find their own while the
// order holds, and else the later.
//
// Most contacts come in the order of the step before. For the others there is an open-addressing table of
// indices: it is filled when the first of a step asks, so that it knows no removal, and it is never more than
// half full. It takes no more room than the step's contacts ask for, since all of it is cleared each time.
class ContactCache {
  public:
    struct Impulses {
        math::real normal;   // N s
        math::real tangent;  // N s
    };

    // Remembers `contacts`, and nothing of before.
    void Update(const ContactPool& contacts);
    // What the remembered contact of this ID carried, or null. Good until the next Update.
    const Impulses* Find(const ContactID& id);

  private:
    static constexpr uint32_t EMPTY = 0xFFFFFFFFu;

    struct Entry {
        ContactID id;
        Impulses impulses;
    };

    uint32_t FirstSlot(uint32_t hash) const { return (hash ^ (hash >> 15)) & m_mask; }
    uint32_t FindSlot(const ContactID& id) const;
    void FillTable();
    void ClearTable();

    util::VectorPOD<Entry> m_entries;   // in the order of the contacts
    util::VectorPOD<uint32_t> m_slots;  // indices of entries, or EMPTY; a power of two
    uint32_t m_mask = 0;
    uint32_t m_next = 0;      // the entry after the one found last
    bool m_isFilled = false;  // the table, with the entries
};

}  // namespace physics
