#include "physics/Contact.h"

#include <cmath>
#include <random>
#include <set>

#include "math/Geometry.h"
#include "physics/ContactCache.h"
#include "physics/ContactPool.h"
#include "physics/World.h"

namespace test {

using math::Vec2;
using physics::BodyPtr;
using physics::Contact;
using physics::ContactID;

class ContactTest : public World {
  protected:
    // Two circles of radius 1 that overlap by `depth`, with a contact between them.
    physics::ContactPtr MakePair(float depth) {
        m_a = AddCircle({0, 0}, 1);
        m_b = AddCircle({2 - depth, 0}, 1);
        return new Contact(GeomOf(m_a).Get(), GeomOf(m_b).Get(), 7, {1 - depth / 2, 0}, {1, 0}, depth);
    }
    BodyPtr m_a;
    BodyPtr m_b;
};

TEST_F(ContactTest, IsMadeFromItsGeoms) {
    const physics::ContactPtr contact = MakePair(0.1f);
    GeomOf(m_a)->m_friction = 0.9f;
    GeomOf(m_b)->m_friction = 0.4f;
    GeomOf(m_a)->m_restitution = 0.5f;
    GeomOf(m_b)->m_restitution = -0.5f;  // a user's number: no root of it may get into the velocities
    contact->Reset(GeomOf(m_b).Get(), GeomOf(m_a).Get(), 7, {0.95f, 0}, {-1, 0}, 0.1f);
    EXPECT_FLOAT_EQ(contact->m_friction, 0.6f);
    EXPECT_EQ(contact->m_restitution, 0);
    EXPECT_EQ(contact->m_bodies[0], m_b.Get());
    EXPECT_TRUE(contact->SolveInit(Constants()));
    EXPECT_TRUE(contact->m_new);
    EXPECT_EQ(contact->m_id.geom0, GeomOf(m_a)->GetID());
    EXPECT_EQ(contact->m_id.geom1, GeomOf(m_b)->GetID());
    EXPECT_EQ(contact->m_id.index, 7u);
    // Along the line of centres the arms do not matter, across it they do: inertia of a disc is m r^2 / 2.
    const float mass = m_a->m_mass;
    EXPECT_FLOAT_EQ(contact->m_useNormalMass, mass / 2);
    const float arm = 0.95f;
    EXPECT_FLOAT_EQ(contact->m_useTangentMass, 1 / (2 / mass * (1 + 2 * arm * arm)));
}

TEST_F(ContactTest, IDsDoNotKnowTheOrderOfTheirGeoms) {
    EXPECT_TRUE(ContactID(9, 4, 2) == ContactID(4, 9, 2));
    EXPECT_EQ(ContactID(9, 4, 2).hash, ContactID(4, 9, 2).hash);
    EXPECT_FALSE(ContactID(9, 4, 2) == ContactID(4, 9, 3));
}

TEST_F(ContactTest, HeldBodyCountsAsInfinitelyHeavy) {
    m_a = AddCircle({0, 0}, 1);
    m_b = AddCircle({1.9f, 0}, 1);
    m_a->m_held = true;
    const auto make = [&] {
        return physics::ContactPtr(
            new Contact(GeomOf(m_a).Get(), GeomOf(m_b).Get(), 0, {0.95f, 0}, {1, 0}, 0.1f));
    };
    const physics::ContactPtr contact = make();
    EXPECT_TRUE(contact->SolveInit(Constants()));
    EXPECT_FLOAT_EQ(contact->m_useNormalMass, m_b->m_mass);
    m_b->m_held = true;
    EXPECT_FALSE(make()->SolveInit(Constants()));
}

TEST_F(ContactTest, FirstTouchIsAnImpactAndTheNextStepIsNone) {
    sim.m_gravitySwitch->Set(false);
    ClearAir();
    SetSurface(0, 0.5f);
    AddGround();
    const BodyPtr ball = AddCircle({0, 0.49f}, 0.5f);
    ball->m_vel = {0, -2};
    sim.Step(true);
    ASSERT_EQ(sim.GetContacts().size(), 1u);
    EXPECT_TRUE(sim.GetContacts()[0]->m_new);
    EXPECT_NEAR(ball->m_vel.y, 1, 1e-5);
    ball->m_pos = {0, 0.49f};
    ball->m_vel = {0, -2};
    ball->UpdateGeoms();
    sim.Step(true);
    EXPECT_FALSE(sim.GetContacts()[0]->m_new);
    EXPECT_EQ(sim.GetCacheHits(), 1u);
    EXPECT_LT(ball->m_vel.y, 0.2f) << "no restitution once the contact persists";
}

// After missing a single step a contact starts over.
TEST_F(ContactTest, MemoryLastsOneStep) {
    sim.m_gravitySwitch->Set(false);
    AddGround();
    const BodyPtr ball = AddCircle({0, 0.499f}, 0.5f);
    const auto place = [&](float y) {
        ball->m_pos = {0, y};
        ball->m_vel = Vec2();
        ball->UpdateGeoms();
    };
    const std::pair<float, uint32_t> steps[] = {
        {0.499f, 0}, {0.498f, 1}, {0.6f, 0}, {0.499f, 0}, {0.499f, 1}};
    for (const auto& [y, hits] : steps) {
        place(y);
        sim.Step(false);
        EXPECT_EQ(sim.GetCacheHits(), hits);
    }
}

TEST_F(ContactTest, FrozenContactsKeepTheirImpulses) {
    AddGround();
    const BodyPtr ball = AddCircle({0, 0.499f}, 0.5f);
    Run(1);
    const float impulse = sim.GetContacts()[0]->m_normalImpulse;
    EXPECT_NEAR(impulse, ball->m_mass * 9.8f * 0.01f, 0.02f * ball->m_mass * 9.8f * 0.01f);
    for (int i = 0; i < 3; ++i) sim.Step(false);
    EXPECT_EQ(sim.GetContacts()[0]->m_normalImpulse, impulse);
}

TEST_F(ContactTest, CacheFindsImpulsesByID) {
    m_a = AddCircle({0, 0}, 1);
    m_b = AddCircle({1.9f, 0}, 1);
    physics::ContactPool pool;
    std::mt19937 random(1);
    std::set<uint32_t> indices;
    for (int i = 0; i < 1000; ++i) {  // of some IDs several
        const uint32_t index = random() % 300;
        Contact& contact = pool.Add(GeomOf(m_a).Get(), GeomOf(m_b).Get(), index, {}, {1, 0}, 0.1f);
        contact.m_normalImpulse = static_cast<float>(i);
        indices.insert(index);
    }
    physics::ContactCache cache;
    EXPECT_EQ(cache.Find(pool[0]->m_id), nullptr);
    cache.Update(pool);
    for (uint32_t index = 0; index < 320; ++index) {
        SCOPED_TRACE(index);
        const auto* const found = cache.Find(ContactID(GeomOf(m_a)->GetID(), GeomOf(m_b)->GetID(), index));
        ASSERT_EQ(found != nullptr, indices.count(index) != 0);
        if (found == nullptr) continue;
        EXPECT_EQ(pool[static_cast<size_t>(found->normal)]->m_id.index, index);
    }
    cache.Update(pool);
    for (const physics::ContactPtr& contact : pool) {  // each its own, in their own order
        EXPECT_EQ(cache.Find(contact->m_id)->normal, contact->m_normalImpulse);
    }
    const ContactID last = pool[999]->m_id;
    pool.Clear();
    cache.Update(pool);
    EXPECT_EQ(cache.Find(last), nullptr);
}

TEST_F(ContactTest, PoolUsesObjectsAgainButNotThoseHeldElsewhere) {
    m_a = AddCircle({0, 0}, 1);
    m_b = AddCircle({1.9f, 0}, 1);
    physics::ContactPool pool;
    const auto add = [&](uint32_t index) {
        return &pool.Add(GeomOf(m_a).Get(), GeomOf(m_b).Get(), index, {}, {1, 0}, 0.1f);
    };
    Contact* const first = add(0);
    const physics::ContactPtr held = add(1);
    pool.Clear();
    EXPECT_TRUE(pool.empty());
    EXPECT_EQ(add(2), first);
    EXPECT_NE(add(3), held.Get());
    EXPECT_EQ(held->m_id.index, 1u);
    EXPECT_EQ(pool[1]->m_id.index, 3u);
}

// Settled scenes make no objects.
TEST_F(ContactTest, SettledSceneMakesNoObjects) {
    AddGround();
    AddStack(3);
    Run(2);
    const int32_t pointees = util::Pointee::GetCount();
    const size_t handles = util::Pointee::GetHandleCount();
    Run(1);
    EXPECT_EQ(util::Pointee::GetCount(), pointees);
    EXPECT_EQ(util::Pointee::GetHandleCount(), handles);
}

}  // namespace test
