#include "physics/ContactReduction.h"

#include "math/Geometry.h"
#include "physics/ContactPool.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;
using physics::Contact;

// Contacts made by hand between a plate and a bar on it, at places along the side between them.
class ContactReductionTest : public World {
  protected:
    ContactReductionTest() : m_plate(AddBox({0, -1}, 4, 2)), m_bar(AddBox({0.5f, 1}, 4, 2)) {}

    Contact& Touch(float x, float depth, float impulse, float slope = 0) {
        const uint32_t index = static_cast<uint32_t>(m_contacts.size());
        const Vec2 up = math::Normalized(Vec2(slope, 1));
        const bool isTurned = index % 2 == 1;  // as vertices of either are found in the other
        physics::Geom* const lower = GeomOf(m_plate).Get();
        physics::Geom* const upper = GeomOf(m_bar).Get();
        Contact& contact = isTurned ? m_contacts.Add(upper, lower, index, {x, 0}, -up, depth)
                                    : m_contacts.Add(lower, upper, index, {x, 0}, up, depth);
        contact.m_normalImpulse = impulse;
        contact.m_tangentImpulse = impulse / 4;
        return contact;
    }
    std::vector<size_t> Reduce() {
        physics::ContactReduction().Mark(m_contacts);
        std::vector<size_t> kept;
        for (size_t i = 0; i < m_contacts.size(); ++i) {
            if (!m_contacts[i]->m_implied) kept.push_back(i);
        }
        return kept;
    }
    // What the contacts do to the bar: impulse and turn about its centre.
    math::Vec3 SumUp() const {
        Vec2 sum;
        float turn = 0;
        for (const physics::ContactPtr& contact : m_contacts) {
            const int bar = contact->m_bodies[1] == m_bar.Get() ? 1 : 0;
            const Vec2 p = (contact->m_normal * contact->m_normalImpulse +
                            math::Perpendicular(contact->m_normal) * contact->m_tangentImpulse) *
                           (bar == 1 ? 1.0f : -1.0f);
            sum += p;
            turn += math::Cross(contact->m_r[bar], p);
        }
        return {sum.x, sum.y, turn};
    }

    BodyPtr m_plate;
    BodyPtr m_bar;
    physics::ContactPool m_contacts;
};

TEST_F(ContactReductionTest, FlatSideStandsOnItsEndsAndItsMiddle) {
    for (const float x : {-0.4f, -1.0f, 0.7f, 0.1f, 1.0f, -0.9f}) Touch(x, 0.001f + 0.0001f * x, 1 + x * x);
    const math::Vec3 before = SumUp();
    EXPECT_EQ(Reduce(), (std::vector<size_t>{1, 3, 4}));
    const math::Vec3 after = SumUp();
    EXPECT_NEAR(after.x, before.x, 1e-5f);
    EXPECT_NEAR(after.y, before.y, 1e-5f);
    EXPECT_NEAR(after.z, before.z, 1e-5f);
    EXPECT_EQ(m_contacts[0]->m_normalImpulse, 0);
    EXPECT_EQ(m_contacts[0]->m_tangentImpulse, 0);
}

TEST_F(ContactReductionTest, WhatTheLeverDoesNotHoldCountsForItself) {
    for (const float x : {-1.0f, 1.0f, 0.0f, 0.5f, -0.7f}) Touch(x, 0.001f, 1);
    Touch(-0.5f, 0.002f, 1);          // a tooth deeper than its neighbours
    Touch(0.25f, 0.001f, 1, -0.05f);  // on a slope
    EXPECT_EQ(Reduce(), (std::vector<size_t>{0, 1, 2, 5, 6}));
}

TEST_F(ContactReductionTest, PairsAndFewContactsAreLeftAlone) {
    for (const float x : {-1.0f, 0.0f, 1.0f}) Touch(x, 0.001f, 1);
    physics::Geom* const other = GeomOf(AddBox({8, 0}, 1, 1)).Get();
    for (const float x : {-1.0f, 0.0f, 1.0f}) {
        m_contacts.Add(GeomOf(m_plate).Get(), other, 0, {x, 0}, {0, 1}, 0.001f);
    }
    // All at one place: a lever without length.
    for (int i = 0; i < 5; ++i) m_contacts.Add(GeomOf(m_bar).Get(), other, 0, {1, 0}, {0, 1}, 0.001f);
    EXPECT_EQ(Reduce().size(), m_contacts.size());
}

// The solver leaves them out, and the box is carried all the same.
TEST_F(ContactReductionTest, BoxAtRestIsCarriedByThreeContacts) {
    sim.Clear();
    ClearAir();
    AddGround();
    const BodyPtr box = AddBox({0, 0.5f}, 1, 1);
    Run(2);
    size_t carrying = 0;
    float impulse = 0;
    for (const physics::ContactPtr& contact : sim.GetContacts()) {
        carrying += contact->m_implied ? 0 : 1;
        EXPECT_TRUE(!contact->m_implied || contact->m_normalImpulse == 0);
        impulse += contact->m_normalImpulse;
    }
    EXPECT_EQ(carrying, 3u);
    EXPECT_GT(sim.GetContacts().size(), carrying);
    EXPECT_NEAR(impulse, box->m_mass * 9.8f * sim.m_timeDelta->Get(), 1e-3f * impulse);
}

}  // namespace test
