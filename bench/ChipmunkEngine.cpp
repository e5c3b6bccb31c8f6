#include <chipmunk/chipmunk.h>

#include <cmath>
#include <vector>

#include "bench/Engine.h"

namespace bench {

namespace {

constexpr double WALL_LENGTH = 1000;

cpVect ToCp(math::Vec2 v) {
    return cpv(v.x, v.y);
}

// Contacts of two moving bodies are met twice, from either side.
void CountHalfContacts(cpBody* body, cpArbiter* arbiter, void* data) {
    cpBody* a;
    cpBody* b;
    cpArbiterGetBodies(arbiter, &a, &b);
    const cpBody* const other = a == body ? b : a;
    const bool isWall = cpBodyGetType(const_cast<cpBody*>(other)) != CP_BODY_TYPE_DYNAMIC;
    *static_cast<int*>(data) += cpArbiterGetCount(arbiter) * (isWall ? 2 : 1);
}

class ChipmunkEngine : public Engine {
  public:
    explicit ChipmunkEngine(const Scene& scene) : m_space(cpSpaceNew()) {
        cpSpaceSetIterations(m_space, SWEEPS);
        cpSpaceSetGravity(m_space, ToCp(scene.gravity));
        for (const Wall& wall : scene.walls) AddWall(wall, scene);
        for (const Shape& shape : scene.shapes) AddShape(shape, scene);
        for (const Pin& pin : scene.pins) {
            cpBody* const first =
                pin.first < 0 ? cpSpaceGetStaticBody(m_space) : m_bodies[static_cast<size_t>(pin.first)];
            m_pins.push_back(
                cpPivotJointNew(first, m_bodies[static_cast<size_t>(pin.second)], ToCp(pin.point)));
            cpConstraintSetCollideBodies(m_pins.back(), cpFalse);
            cpSpaceAddConstraint(m_space, m_pins.back());
        }
    }
    ~ChipmunkEngine() override {
        for (cpConstraint* pin : m_pins) cpConstraintFree(pin);
        for (cpShape* shape : m_shapes) cpShapeFree(shape);
        for (cpBody* body : m_bodies) cpBodyFree(body);
        cpSpaceFree(m_space);
    }
    void Step() override { cpSpaceStep(m_space, TIME_STEP); }
    int CountContacts() const override {
        int halves = 0;
        for (cpBody* body : m_bodies) cpBodyEachArbiter(body, CountHalfContacts, &halves);
        return halves / 2;
    }

  private:
    void Add(cpShape* shape, const Scene& scene) {
        // This engine multiplies the frictions of a pair; the others take the root of the product.
        cpShapeSetFriction(shape, std::sqrt(FRICTION));
        cpShapeSetElasticity(shape, scene.restitution);
        cpSpaceAddShape(m_space, shape);
        m_shapes.push_back(shape);
    }
    void AddWall(const Wall& wall, const Scene& scene) {
        const cpVect point = ToCp(wall.normal * -wall.d);
        const cpVect along = cpvmult(ToCp(math::Perpendicular(wall.normal)), WALL_LENGTH);
        Add(cpSegmentShapeNew(cpSpaceGetStaticBody(m_space), cpvsub(point, along), cpvadd(point, along), 0),
            scene);
    }
    void AddShape(const Shape& shape, const Scene& scene) {
        cpBody* const body = cpBodyNew(1, 1);
        cpSpaceAddBody(m_space, body);
        m_bodies.push_back(body);
        cpBodySetPosition(body, ToCp(shape.pos));
        cpBodySetVelocity(body, ToCp(shape.vel));
        cpShape* const made = MakeShape(body, shape);
        cpShapeSetDensity(made, DENSITY);
        Add(made, scene);
    }
    static cpShape* MakeShape(cpBody* body, const Shape& shape) {
        if (shape.kind == Shape::CIRCLE) return cpCircleShapeNew(body, shape.radius, cpvzero);
        if (shape.kind == Shape::BOX) return cpBoxShapeNew(body, 2 * shape.half.x, 2 * shape.half.y, 0);
        std::vector<cpVect> verts;
        for (const math::Vec2 v : shape.verts) verts.push_back(ToCp(v));
        return cpPolyShapeNew(body, static_cast<int>(verts.size()), verts.data(), cpTransformIdentity, 0);
    }

    cpSpace* m_space;
    std::vector<cpBody*> m_bodies;
    std::vector<cpShape*> m_shapes;
    std::vector<cpConstraint*> m_pins;
};

}  // namespace

std::unique_ptr<Engine> MakeChipmunk(const Scene& scene) {
    return std::make_unique<ChipmunkEngine>(scene);
}

}  // namespace bench
