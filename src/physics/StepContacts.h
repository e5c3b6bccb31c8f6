#pragma once

#include <cstdint>

#include "physics/CollisionDetection.h"
#include "physics/ContactCache.h"
#include "physics/ContactPool.h"
#include "physics/ContactReduction.h"
#include "physics/Fwd.h"

namespace physics {

// The contacts of a world, found anew at each step. One that was there in the step before goes on with its
// impulses, and is no impact any more.
class StepContacts {
  public:
    // In each step: once Begin, Enter for each body, and Find.
    void Begin() { m_collider.Begin(); }
    void Enter(Body& body) { m_collider.Enter(body); }
    void Find(const ParticleList& particles);
    void Clear();

    const ContactPool& Get() const { return m_contacts; }  // of the last Find
    uint32_t GetCacheHits() const { return m_cacheHits; }  // of them, how many persisted

    bool IsOverBudget() const { return m_contacts.IsFull(); }  // some were left out

  private:
    void MatchCache();

    Collider m_collider;
    ContactPool m_contacts;
    ContactCache m_cache;  // of the step before
    ContactReduction m_reduction;
    uint32_t m_cacheHits = 0;
};

}  // namespace physics
