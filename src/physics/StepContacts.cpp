#include "physics/StepContacts.h"

#include "util/ProfileTree.h"

namespace physics {

void StepContacts::Find(const ParticleList& particles) {
    {
        PROFILE_SECTION("Update cache");
        m_cache.Update(m_contacts);
    }
    {
        PROFILE_SECTION("Finding contacts");
        m_contacts.Clear();
        m_collider.Collide(particles, m_contacts);
    }
    MatchCache();
    m_reduction.Mark(m_contacts);
}

void StepContacts::MatchCache() {
    PROFILE_SECTION("Matching cache");
    m_cacheHits = 0;
    for (const ContactPtr& contact : m_contacts) {
        const ContactCache::Impulses* const old = m_cache.Find(contact.Get()->m_id);
        if (old == nullptr) continue;
        contact.Get()->m_normalImpulse = old->normal;
        contact.Get()->m_tangentImpulse = old->tangent;
        contact.Get()->m_new = false;
        ++m_cacheHits;
    }
}

void StepContacts::Clear() {
    m_contacts.Release();
    m_cacheHits = 0;
}

}  // namespace physics
