#include <cmath>
#include <cstring>

#include "Fuzz.h"
#include "physics/Body.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "util/Exception.h"

namespace {

constexpr size_t MAX_VERTICES = 64;
constexpr int STEPS = 20;

// Bytes as vertices: small whole numbers, which often coincide and lie in a row, or any floats.
math::Vec2List ReadOutline(const uint8_t* data, size_t size) {
    math::Vec2List outline;
    if (size > 0 && data[0] % 2 == 0) {
        for (size_t i = 1; i + 1 < size && outline.size() < MAX_VERTICES; i += 2) {
            outline.push_back({static_cast<int8_t>(data[i]) / 8.0f, static_cast<int8_t>(data[i + 1]) / 8.0f});
        }
        return outline;
    }
    for (size_t i = 1; i + sizeof(float[2]) <= size && outline.size() < MAX_VERTICES; i += sizeof(float[2])) {
        float v[2];
        std::memcpy(v, data + i, sizeof v);
        outline.push_back({v[0], v[1]});
    }
    return outline;
}

void AddToWorld(const physics::GeomPtr& geom) {
    const physics::BodyPtr body = new physics::Body;
    body->SetGeoms({geom});
    physics::Simulation::Instance().AddBody(body);
}

}  // namespace

// An outline is refused or makes a shape of finite measures, which a ball and the ground may meet.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::MakeQuietParser();
    physics::Simulation& simulation = physics::Simulation::Instance();
    physics::PolygonPtr polygon;
    try {
        polygon = new physics::Polygon(ReadOutline(data, size));
    } catch (const std::exception&) {
        fuzz::Tidy();
        return 0;
    }
    fuzz::Require(polygon->GetArea() > 0 && std::isfinite(polygon->GetArea()), "a positive area");
    fuzz::Require(polygon->GetInertiaSansMass() >= 0, "an inertia");
    const math::Vec2 at = polygon->GetPos();
    const math::BoundingBox2f box = polygon->GetBoundingBox();
    for (const math::Vec2 point : {at, box.min, box.max}) {
        fuzz::Require(!std::isnan(polygon->GetDistance(point)), "a distance");
    }
    AddToWorld(polygon);
    AddToWorld(new physics::Circle(0.5f, at));
    AddToWorld(new physics::Circle(0.25f, box.max));
    simulation.m_running->Set(true);
    for (int i = 0; i < STEPS; ++i) simulation.Step(true);
    for (const physics::BodyPtr& body : simulation.GetBodies()) {
        const bool finite =
            std::isfinite(body->m_vel.x) && std::isfinite(body->m_vel.y) && std::isfinite(body->m_angVel);
        fuzz::Require(finite, "finite velocities");
        for (const physics::GeomPtr& geom : body->GetGeoms()) {
            fuzz::Require(std::isfinite(geom->GetPos().x) && std::isfinite(geom->GetPos().y),
                          "finite places");
        }
    }
    simulation.Clear();
    fuzz::Tidy();
    return 0;
}
