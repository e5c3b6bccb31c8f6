#include "physics/StepContacts.h"

#include "util/ProfileTree.h"

namespace physics {

void StepContacts::Find(const BodyList& bodies, const ParticleList& particles) {
    m_lastContacts.swap(m_contacts);
    {
        PROFILE_SECTION("Update cache");
        m_cache.Update(m_lastContacts);
    }
    {
        PROFILE_SECTION("Finding contacts");
        m_contacts.Clear();
        m_collider.AssignBodies(bodies, particles);
        m_collider.Collide(m_contacts);
    }
    MatchCache();
    m_reduction.Mark(m_contacts);
}

void StepContacts::MatchCache() {
    PROFILE_SECTION("Matching cache");
    m_cacheHits = 0;
    for (const ContactPtr& contact : m_contacts) {
        const Contact* const old = m_cache.Find(contact.Get()->m_id);
        if (old == nullptr) continue;
        contact.Get()->m_normalImpulse = old->m_normalImpulse;
        contact.Get()->m_tangentImpulse = old->m_tangentImpulse;
        contact.Get()->m_new = false;
        ++m_cacheHits;
    }
}

void StepContacts::Clear() {
    m_cache.Clear();
    m_lastContacts.Release();
    m_contacts.Release();
    m_cacheHits = 0;
}

}  // namespace physics
