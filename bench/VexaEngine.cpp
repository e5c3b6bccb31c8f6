#include <vector>

#include "bench/Engine.h"
#include "math/Vector.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"

namespace bench {

namespace {

constexpr float BRUSH_EDGE = 0.1f;  // m, as strokes of the brush are sampled

physics::GeomPtr MakeGeom(const Shape& shape) {
    if (shape.kind == Shape::CIRCLE) return new physics::Circle(shape.radius, shape.pos);
    if (shape.kind == Shape::BOX) {
        const math::Vec2 min = shape.pos - shape.half;
        const math::Vec2 max = shape.pos + shape.half;
        return physics::GeomPtr(physics::MakeBoxPolygon(min.x, min.y, max.x, max.y));
    }
    math::Vec2List outline;
    for (const math::Vec2 v : shape.verts) outline.push_back(shape.pos + v);
    return new physics::Polygon(physics::AssertMaxDist(outline, BRUSH_EDGE));
}

class VexaEngine : public Engine {
  public:
    explicit VexaEngine(const Scene& scene) : m_simulation(physics::Simulation::Instance()) {
        m_simulation.Clear();
        m_simulation.m_running->Set(true);
        m_simulation.m_timeDelta->Set(TIME_STEP);
        m_simulation.m_solveIter->Set(SWEEPS);
        m_simulation.m_gravity->Set(scene.gravity);
        for (const Wall& wall : scene.walls) Add(new physics::Plane(wall.normal, wall.d), {}, scene);
        std::vector<physics::GeomPtr> geoms;
        for (const Shape& shape : scene.shapes) {
            geoms.push_back(MakeGeom(shape));
            Add(geoms.back(), shape.vel, scene);
        }
        for (const Pin& pin : scene.pins) {
            const physics::GeomPtr& first = pin.first < 0 ? m_simulation.GetWorldBody()->GetParts()[0].geom
                                                          : geoms[static_cast<size_t>(pin.first)];
            m_simulation.AddConstraint(
                new physics::Hinge(first, geoms[static_cast<size_t>(pin.second)], pin.point));
        }
    }
    void Step() override { m_simulation.Step(true); }
    int CountContacts() const override { return static_cast<int>(m_simulation.GetContacts().size()); }

  private:
    void Add(const physics::GeomPtr& geom, math::Vec2 vel, const Scene& scene) {
        geom->m_density = DENSITY;
        geom->m_friction = FRICTION;
        geom->m_restitution = scene.restitution;
        const physics::BodyPtr body = new physics::Body(geom);
        body->m_vel = vel;
        m_simulation.AddBody(body);
    }

    physics::Simulation& m_simulation;
};

}  // namespace

std::unique_ptr<Engine> MakeVexa(const Scene& scene) {
    return std::make_unique<VexaEngine>(scene);
}

}  // namespace bench
