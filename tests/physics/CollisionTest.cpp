#include "physics/CollisionDetection.h"

#include <algorithm>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <set>

#include "CollisionReference.h"
#include "Shapes.h"
#include "math/Geometry.h"
#include "util/Exception.h"

namespace physics {
namespace {

using math::Vec2;
using test::FoundContacts;

constexpr uint32_t CENTER_INSIDE = 0xFFFFFFFF;

// Bodies that are taken apart at the end, so that their cycles do not outlive the test.
class World {
  public:
    ~World() {
        for (const BodyPtr& body : m_bodies) body->SetGeoms(GeomSet());
        for (const ParticlePtr& particle : m_particles) particle->m_geom->SetBody(nullptr);
    }
    template <class GeomType>
    GeomType* Add(GeomType* geom) {
        m_bodies.push_back(test::MakeBody(geom));
        m_bodies.back()->UpdateGeoms();
        return geom;
    }
    BodyList& GetBodies() { return m_bodies; }
    void AddParticle(Vec2 pos) {
        m_particles.push_back(new Particle(pos, Vec2()));
        m_particles.back()->m_geom->SetBody(m_particles.back().Get());
    }
    FoundContacts Collide() { return test::Collide(m_collider, m_bodies, m_particles); }
    FoundContacts CollideByBruteForce() const { return test::CollideByBruteForce(m_bodies, m_particles); }

  private:
    BodyList m_bodies;
    ParticleList m_particles;
    Collider m_collider;
};

Polygon* Box(float minX, float minY, float maxX, float maxY) {
    const math::Vec2List outline = {{minX, minY}, {maxX, minY}, {maxX, maxY}, {minX, maxY}};
    return new Polygon(outline);
}

// ---- against brute force -------------------------------------------------------------------------------

void AddRandomGeom(World& world, test::Random& random, float range) {
    const Vec2 pos(test::Uniform(random, -range, range), test::Uniform(random, -range, range));
    const int kind = static_cast<int>(random() % 10);
    Geom* geom = nullptr;
    if (kind < 5) {
        geom = world.Add(new Circle(test::Uniform(random, 0.1f, 0.8f), pos));
    } else if (kind < 9) {
        const int vertices = 3 + static_cast<int>(random() % 12);
        geom =
            world.Add(new Polygon(test::MakeStar(random, vertices, test::Uniform(random, 0.2f, 1.2f), pos)));
    } else {
        geom = world.Add(new Polygon(test::MakeRectangle(4 * range, 0.3f, test::Uniform(random, 0, 3), pos)));
    }
    if (random() % 4 == 0) geom->m_collideSet = static_cast<uint32_t>(random() % 16);
    if (random() % 6 == 0) world.GetBodies().back()->SetHeld(true);
}

void MakeRandomWorld(World& world, test::Random& random, int geoms, float range) {
    for (int i = 0; i < geoms; ++i) AddRandomGeom(world, random, range);
    world.Add(new Plane({0, 1}, range / 2));
    world.Add(new Plane({0.6f, 0.8f}, range / 2));
    BodyList& bodies = world.GetBodies();
    // Some geoms share a body, some may not touch each other.
    for (int i = 0; i < geoms / 10; ++i) {
        const BodyPtr a = bodies[random() % geoms], b = bodies[random() % geoms];
        if (a == b || a->GetGeoms().empty() || b->GetGeoms().empty()) continue;
        (*a->GetGeoms().begin())->m_noCollide.insert(b->GetGeoms().begin()->Get());
    }
    const GeomSet moved = bodies[0]->GetGeoms();
    bodies[0]->SetGeoms(GeomSet());
    bodies[1]->AddGeoms(moved);
}

void Shake(World& world, test::Random& random) {
    for (const BodyPtr& body : world.GetBodies()) {
        if (body->m_massInv == 0) continue;
        body->m_pos += Vec2(test::Uniform(random, -0.3f, 0.3f), test::Uniform(random, -0.3f, 0.3f));
        body->m_angle += test::Uniform(random, -1, 1);
        body->UpdateGeoms();
    }
}

TEST(Collider, FindsTheContactsOfBruteForceInTheirOrder) {
    test::Random random(21);
    for (const float range : {2.0f, 6.0f, 20.0f}) {
        World world;
        MakeRandomWorld(world, random, 60, range);
        size_t contacts = 0;
        for (int step = 0; step < 12; ++step) {
            const FoundContacts expected = world.CollideByBruteForce();
            contacts += expected.size();
            ASSERT_EQ(test::FindDifference(world.Collide(), expected), "")
                << "range " << range << ", step " << step;
            Shake(world, random);
        }
        EXPECT_GT(contacts, 100u);
    }
}

TEST(Collider, LosesNoContactFarFromTheOrigin) {
    test::Random random(22);
    World world;
    MakeRandomWorld(world, random, 50, 3);
    for (const Vec2 shift : {Vec2(500, 0), Vec2(0, 9000), Vec2(50000, -50000)}) {
        for (const BodyPtr& body : world.GetBodies()) {
            body->m_pos += shift;
            body->UpdateGeoms();
        }
        EXPECT_EQ(test::FindDifference(world.Collide(), world.CollideByBruteForce()), "");
    }
}

// A NaN in a body's place stays with the body: it touches nothing, and hides no contact of the others.
TEST(Collider, BodiesWithoutPlaceTouchNothing) {
    test::Random random(23);
    World world;
    MakeRandomWorld(world, random, 40, 3);
    BodyList sound;
    for (size_t i = 0; i < world.GetBodies().size(); ++i) {
        const BodyPtr body = world.GetBodies()[i];
        if (i % 5 != 0) {
            sound.push_back(body);
            continue;
        }
        body->m_pos.x = std::numeric_limits<float>::quiet_NaN();
        body->UpdateGeoms();
    }
    EXPECT_EQ(test::FindDifference(world.Collide(), test::CollideByBruteForce(sound)), "");
}

// ---- single pairs --------------------------------------------------------------------------------------

// The square of a distance may be below that of the radius, and the distance still be rounded to it.
TEST(Collider, EveryContactOverlaps) {
    const float justBelow = std::nextafter(0.7f, 0.0f);
    for (int i = 0; i < 1000; ++i) {
        const Vec2 pos(justBelow, static_cast<float>(i) * 1e-6f);
        World circles, corner;
        circles.Add(new Circle(0.35f, {0, 0}));
        circles.Add(new Circle(0.35f, pos));
        corner.Add(Box(-1, -1, 0, 0));
        corner.Add(new Circle(0.7f, pos));
        for (World* const world : {&circles, &corner}) {
            for (const auto& contact : world->Collide()) EXPECT_GT(contact.penetration, 0) << i;
        }
    }
}

TEST(Collider, CirclesAtOnePlaceArePushedNowhere) {
    World world;
    world.Add(new Circle(1, {2, 2}));
    world.Add(new Circle(1, {2, 2}));
    const FoundContacts found = world.Collide();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].normal, Vec2());
    EXPECT_EQ(found[0].point, Vec2(2, 2));
}

// A square of four vertices: its edges are 1 to 4, its vertices 5 to 8.
TEST(Collider, CircleBesidePolygonTouchesEdgesAndVertices) {
    const struct {
        Vec2 center;
        std::vector<uint32_t> indices;
    } cases[] = {
        {{1, 2.4f}, {3}},        // above the top
        {{2.4f, 1}, {2}},        // to the right
        {{2.3f, 2.3f}, {7}},     // off the corner
        {{1.9f, 2.3f}, {3, 7}},  // over the top, near the corner
        {{2.0f, 2.45f}, {7}},    // straight above the corner
        {{3, 3}, {}},
    };
    for (const auto& c : cases) {
        World world;
        const Polygon* const box = world.Add(Box(0, 0, 2, 2));
        world.Add(new Circle(0.5f, c.center));
        std::vector<uint32_t> indices;
        for (const auto& contact : world.Collide()) {
            indices.push_back(contact.index);
            EXPECT_EQ(contact.geomB, box->GetID());
            // The normal points into the polygon, as the circle is the first geom.
            EXPECT_LT(math::Dot(contact.normal, c.center - Vec2(1, 1)), 0);
        }
        EXPECT_EQ(indices, c.indices) << c.center.x << ", " << c.center.y;
    }
}

TEST(Collider, CircleInsidePolygonLeavesOnTheNearSide) {
    const struct {
        Vec2 center, out;
    } cases[] = {{{2, 3.6f}, {0, 1}}, {{2, 0.5f}, {0, -1}}, {{3.7f, 2}, {1, 0}}, {{0.2f, 1.7f}, {-1, 0}}};
    for (const auto& c : cases) {
        World world;
        const Circle* const circle = world.Add(new Circle(0.1f, c.center));
        world.Add(Box(0, 0, 4, 4));
        const FoundContacts found = world.Collide();
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].index, CENTER_INSIDE);
        EXPECT_EQ(found[0].geomA, circle->GetID());
        EXPECT_EQ(found[0].point, c.center);
        // The first geom is pushed against the normal.
        EXPECT_NEAR(math::Dot(found[0].normal, c.out), -1, 0.01f);
        const float depth = 2 - std::max(std::fabs(c.center.x - 2), std::fabs(c.center.y - 2));
        EXPECT_NEAR(found[0].penetration, 0.1f + depth, 0.03f);
    }
}

TEST(Collider, PolygonVerticesAreFoundInTheOther) {
    World world;
    const Polygon* const lower = world.Add(Box(-2, -1, 2, 0));
    const Polygon* const upper = world.Add(Box(-1, -0.05f, 1, 1));
    uint32_t vertices = 0;
    for (const auto& contact : world.Collide()) {
        if (contact.index > 4) continue;  // along the sides
        EXPECT_EQ(contact.index, ++vertices) << "vertices are counted from 1";
        EXPECT_EQ(contact.geomA, lower->GetID()) << "the polygon the vertex lies in comes first";
        EXPECT_EQ(contact.geomB, upper->GetID());
        EXPECT_NEAR(contact.normal.y, 1, 0.01f);
        EXPECT_NEAR(contact.penetration, 0.05f, 0.01f);
    }
    EXPECT_EQ(vertices, 2u);
}

// Of boxes that stand flush no vertex is in the other. Points along the sides of either are, and differ in
// their numbers, so that each keeps its own impulses.
TEST(Collider, FlushBoxesTouchAlongTheirSides) {
    World world;
    world.Add(Box(-0.5f, 0, 0.5f, 1));
    const math::Vec2List upsideDown = {{0.5f, 2}, {-0.5f, 2}, {-0.5f, 0.999f}, {0.5f, 0.999f}};
    world.Add(new Polygon(upsideDown));
    std::set<uint32_t> indices;
    for (const auto& contact : world.Collide()) {
        if (std::fabs(contact.normal.y) < 0.99f) continue;
        EXPECT_NEAR(contact.penetration, 0.001f, 5e-5f);
        EXPECT_TRUE(indices.insert(contact.index).second) << contact.index;
    }
    EXPECT_EQ(indices.size(), 6u);
}

// ---- filter --------------------------------------------------------------------------------------------

// Two overlapping circles; how many contacts remain after `change`.
size_t CountAfter(const std::function<void(Geom& a, Geom& b)>& change) {
    World world;
    Circle* const a = world.Add(new Circle(1, {0, 0}));
    Circle* const b = world.Add(new Circle(1, {1, 0}));
    change(*a, *b);
    return world.Collide().size();
}

TEST(Collider, FiltersPairs) {
    const auto held = [](Geom& geom) { geom.GetBodyPtr()->SetHeld(true); };
    EXPECT_EQ(CountAfter([](Geom&, Geom&) {}), 1u);
    EXPECT_EQ(CountAfter([](Geom& a, Geom&) { a.m_collideSet = 2; }), 0u);
    EXPECT_EQ(CountAfter([](Geom& a, Geom& b) { a.m_collideSet = 6, b.m_collideSet = 3; }), 1u);
    EXPECT_EQ(CountAfter([](Geom& a, Geom& b) { a.m_collideSet = b.m_collideSet = 8; }), 0u)
        << "only three layers count";
    EXPECT_EQ(CountAfter([&](Geom& a, Geom&) { held(a); }), 1u);
    EXPECT_EQ(CountAfter([&](Geom& a, Geom& b) { held(a), held(b); }), 0u);
    EXPECT_EQ(CountAfter([](Geom& a, Geom& b) { a.m_noCollide.insert(&b); }), 0u);
    EXPECT_EQ(CountAfter([](Geom& a, Geom& b) { b.m_noCollide.insert(&a); }), 1u)
        << "only the first geom of the pair is asked";
}

TEST(Collider, GeomsOfOneBodyPassThroughEachOther) {
    World world;
    const GeomPtr circle = new Circle(1, {0, 0});
    world.Add(Box(0, 0, 2, 2));
    world.GetBodies()[0]->AddGeom(circle);
    EXPECT_TRUE(world.Collide().empty());
}

TEST(Collider, WorldGeomTouchesNothing) {
    World world;
    world.Add(new WorldGeom);
    world.Add(new Circle(1, {0, 0}));
    EXPECT_TRUE(world.Collide().empty());
}

TEST(Collider, RefusesAGeomWithoutBody) {
    World world;
    Circle* const circle = world.Add(new Circle(1, {0, 0}));
    circle->SetBody(nullptr);
    EXPECT_THROW(world.Collide(), BadCoderException);
    circle->SetBody(world.GetBodies()[0].Get());
}

// ---- water ---------------------------------------------------------------------------------------------

TEST(Collider, WaterTouchesWhatBruteForceFinds) {
    test::Random random(31);
    for (const float range : {2.0f, 8.0f}) {
        World world;
        MakeRandomWorld(world, random, 40, range);
        for (int i = 0; i < 300; ++i) {
            world.AddParticle({test::Uniform(random, -range, range), test::Uniform(random, -range, 0)});
        }
        for (size_t i = 0; i < 40; i += 3) {
            for (const GeomPtr& geom : world.GetBodies()[i]->GetGeoms()) geom->m_collideWater = false;
        }
        const size_t dry = test::CollideByBruteForce(world.GetBodies()).size();
        FoundContacts expected = world.CollideByBruteForce();
        FoundContacts found = world.Collide();
        EXPECT_GT(expected.size(), dry + 50);
        // Drops come in the order of their grid.
        const auto comesFirst = [](const test::FoundContact& a, const test::FoundContact& b) {
            return std::make_pair(a.geomA, a.geomB) < std::make_pair(b.geomA, b.geomB);
        };
        const auto begin = static_cast<std::ptrdiff_t>(dry);
        std::sort(expected.begin() + begin, expected.end(), comesFirst);
        std::sort(found.begin() + std::min(begin, static_cast<std::ptrdiff_t>(found.size())), found.end(),
                  comesFirst);
        EXPECT_EQ(test::FindDifference(found, expected), "");
    }
}

TEST(Collider, WaterIsPushedOutOfShapesWhateverTheirLayersAndMass) {
    World world;
    world.Add(new Plane({0, 1}, 0));
    Polygon* const box = world.Add(Box(4, 1, 6, 3));
    box->m_collideSet = 0;
    world.GetBodies().back()->SetHeld(true);
    world.AddParticle({0, -0.1f});
    world.AddParticle({0, 0.004f});  // within the collision radius of 0.005
    world.AddParticle({0, 0.006f});
    world.AddParticle({5, 2.9f});
    const FoundContacts found = world.Collide();
    ASSERT_EQ(found.size(), 3u);
    EXPECT_NEAR(found[0].penetration, 0.105f, 1e-6f);
    EXPECT_EQ(found[0].normal, Vec2(0, 1));
    EXPECT_NEAR(found[1].penetration, 0.001f, 1e-6f);
    EXPECT_EQ(found[2].geomA, box->GetID());
    EXPECT_NEAR(found[2].normal.y, 1, 0.01f);
}

TEST(Collider, WaterOnABoxIsHeldUp) {
    World world;
    world.Add(Box(0, 0, 2, 2));
    world.AddParticle({1, 2.003f});
    const FoundContacts found = world.Collide();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_NEAR(found[0].normal.y, 1, 1e-3f);
    EXPECT_NEAR(found[0].penetration, 0.002f, 1e-3f);
}

}  // namespace
}  // namespace physics
