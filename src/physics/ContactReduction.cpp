#include "physics/ContactReduction.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"
#include "util/ProfileTree.h"

namespace physics {

using math::real;

namespace {

constexpr size_t MOST_KEPT = 3;
constexpr real PARALLEL = 0.9998f;  // least cosine of normals that agree, at one degree
constexpr real LEAST_EXCESS =
    0.0002f;  // m, over the lever's depth, from which on a contact counts for itself

bool AreOfOnePair(const Contact& a, const Contact& b) {
    return a.m_id.geom0 == b.m_id.geom0 && a.m_id.geom1 == b.m_id.geom1;
}

void HandOver(Contact& from, Contact& to, real share) {
    to.m_normalImpulse += from.m_normalImpulse * share;
    to.m_tangentImpulse += from.m_tangentImpulse * share;
}

}  // namespace

void ContactReduction::Mark(const ContactPool& contacts) {
    PROFILE_SECTION("Implied contacts");
    for (size_t first = 0, end; first < contacts.size(); first = end) {
        end = first + 1;
        while (end < contacts.size() && AreOfOnePair(*contacts[first], *contacts[end])) ++end;
        if (end - first <= MOST_KEPT) continue;
        FindParallel(contacts, first, end);
        if (m_touches.size() > MOST_KEPT) MarkBetween();
    }
}

// The contacts of one pair may have their bodies, and with them their normals, in either order.
void ContactReduction::FindParallel(const ContactPool& contacts, size_t first, size_t end) {
    m_touches.clear();
    const Contact& model = *contacts[first];
    for (size_t i = first; i < end; ++i) {
        Contact& contact = *contacts[i];
        const bool isTurned = contact.m_bodies[0] != model.m_bodies[0];
        const real cosine = math::Dot(contact.m_normal, model.m_normal);
        if (!((isTurned ? -cosine : cosine) > PARALLEL)) continue;
        m_touches.push_back({&contact, math::Cross(model.m_normal, contact.m_r[isTurned ? 1 : 0])});
    }
}

void ContactReduction::MarkBetween() {
    const auto isLower = [](const Touch& a, const Touch& b) { return a.place < b.place; };
    const auto ends = std::minmax_element(m_touches.begin(), m_touches.end(), isLower);
    const Touch low = *ends.first, high = *ends.second;
    const real span = high.place - low.place;
    if (!(span > 0)) return;
    const real center = low.place + span / 2;
    const auto isNearer = [center](const Touch& a, const Touch& b) {
        return std::fabs(a.place - center) < std::fabs(b.place - center);
    };
    const Contact* const middle = std::min_element(m_touches.begin(), m_touches.end(), isNearer)->contact;
    for (const Touch& touch : m_touches) {
        Contact& contact = *touch.contact;
        if (&contact == low.contact || &contact == high.contact || &contact == middle) continue;
        const real share = (touch.place - low.place) / span;
        const real depth = low.contact->m_penetration * (1 - share) + high.contact->m_penetration * share;
        if (contact.m_penetration > depth + LEAST_EXCESS) continue;
        HandOver(contact, *low.contact, 1 - share);
        HandOver(contact, *high.contact, share);
        contact.m_normalImpulse = contact.m_tangentImpulse = 0;
        contact.m_implied = true;
    }
}

}  // namespace physics
