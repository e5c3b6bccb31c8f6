#include <box2d/box2d.h>

#include <vector>

#include "bench/Engine.h"

namespace bench {

namespace {

constexpr int POSITION_SWEEPS = 3;  // that engine's own recommendation
constexpr float WALL_LENGTH = 1000;

b2Vec2 ToB2(math::Vec2 v) {
    return {v.x, v.y};
}

class Box2DEngine : public Engine {
  public:
    explicit Box2DEngine(const Scene& scene) : m_world(ToB2(scene.gravity)) {
        m_world.SetAllowSleeping(false);
        m_world.SetContinuousPhysics(false);
        for (const Wall& wall : scene.walls) AddWall(wall, scene);
        for (const Shape& shape : scene.shapes) AddShape(shape, scene);
        b2BodyDef definition;
        b2Body* const ground = m_world.CreateBody(&definition);
        for (const Pin& pin : scene.pins) {
            b2RevoluteJointDef joint;
            joint.Initialize(pin.first < 0 ? ground : m_bodies[static_cast<size_t>(pin.first)],
                             m_bodies[static_cast<size_t>(pin.second)], ToB2(pin.point));
            m_world.CreateJoint(&joint);
        }
    }
    void Step() override { m_world.Step(TIME_STEP, SWEEPS, POSITION_SWEEPS); }
    int CountContacts() const override {
        int count = 0;
        for (const b2Contact* contact = m_world.GetContactList(); contact; contact = contact->GetNext()) {
            if (contact->IsTouching()) count += contact->GetManifold()->pointCount;
        }
        return count;
    }

  private:
    void AddFixture(b2Body* body, const b2Shape& shape, const Scene& scene) {
        b2FixtureDef fixture;
        fixture.shape = &shape;
        fixture.density = DENSITY;
        fixture.friction = FRICTION;
        fixture.restitution = scene.restitution;
        body->CreateFixture(&fixture);
    }
    void AddWall(const Wall& wall, const Scene& scene) {
        const math::Vec2 point = wall.normal * -wall.d;
        const math::Vec2 along = math::Perpendicular(wall.normal) * WALL_LENGTH;
        b2BodyDef definition;
        b2EdgeShape edge;
        edge.SetTwoSided(ToB2(point - along), ToB2(point + along));
        AddFixture(m_world.CreateBody(&definition), edge, scene);
    }
    void AddShape(const Shape& shape, const Scene& scene) {
        b2BodyDef definition;
        definition.type = b2_dynamicBody;
        definition.position = ToB2(shape.pos);
        definition.linearVelocity = ToB2(shape.vel);
        b2Body* const body = m_world.CreateBody(&definition);
        m_bodies.push_back(body);
        if (shape.kind == Shape::CIRCLE) {
            b2CircleShape circle;
            circle.m_radius = shape.radius;
            AddFixture(body, circle, scene);
            return;
        }
        b2PolygonShape polygon;
        if (shape.kind == Shape::BOX) {
            polygon.SetAsBox(shape.half.x, shape.half.y);
        } else {
            std::vector<b2Vec2> verts;
            for (const math::Vec2 v : shape.verts) verts.push_back(ToB2(v));
            polygon.Set(verts.data(), static_cast<int32>(verts.size()));
        }
        AddFixture(body, polygon, scene);
    }

    b2World m_world;
    std::vector<b2Body*> m_bodies;  // of the scene's shapes
};

}  // namespace

std::unique_ptr<Engine> MakeBox2D(const Scene& scene) {
    return std::make_unique<Box2DEngine>(scene);
}

}  // namespace bench
