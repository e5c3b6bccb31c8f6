#include "app/entities/GeomEntity.h"

#include <algorithm>
#include <cmath>

#include "app/entities/EntityReader.h"
#include "logging/Log.h"
#include "physics/Body.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "util/Assert.h"

namespace app {

namespace {

using physics::Geom;

// The geom lives as long as its entity, which owns the attribute. Only friction and restitution are declared
// so: above 1 they would feed energy into the world, and what is no number would spread through contacts.
script::TAttribPtr<float> DeclareGeomFloat(script::Reflected& owner, const char* name, Geom& geom,
                                           math::real Geom::*field) {
    Geom* const target = &geom;
    return script::DeclareAttribGetSet<float>(
        owner, name, target->*field, [target, field] { return target->*field; },
        [target, field, name](float value) {
            if (!std::isfinite(value)) {
                Log(logging::Warning, String(name) + " must be a number: it stays as it was");
                return;
            }
            target->*field = std::min(value, 1.0f);
        });
}

}  // namespace

GeomEntity::GeomEntity(const String& name, const physics::GeomPtr& geom)
    : Entity(name),
      m_friction(DeclareGeomFloat(*this, "friction", *geom, &Geom::m_friction)),
      m_restitution(DeclareGeomFloat(*this, "restitution", *geom, &Geom::m_restitution)),
      m_collideWater(script::DeclareAttribRemotePoker<bool>(*this, "collideWater", &geom->m_collideWater)),
      m_collideSet(script::DeclareAttribRemotePoker<int>(*this, "collideSet",
                                                         reinterpret_cast<int*>(&geom->m_collideSet))),
      m_geom(geom) {}

GeomEntity::~GeomEntity() noexcept(false) = default;

void GeomEntity::UpdateBodyPtr() {
    m_body = physics::BodyOf(m_geom);
}

bool GeomEntity::IsPointInside(math::Vec2 point) const {
    return m_geom->GetDistance(point) <= 0;
}

void GeomEntity::AddToSimulation() {
    UpdateBodyPtr();
    if (!m_body) {
        m_body = new physics::Body;
        m_body->SetGeom(m_geom);
    }
    m_body->m_held = false;
    physics::Simulation::Instance().AddBody(m_body);
}

void GeomEntity::RemoveFromSimulation() {
    UpdateBodyPtr();
    if (!m_body) return;
    physics::GeomSet geoms = m_body->GetGeoms();
    CODE_ASSERTION(geoms.count(m_geom));
    geoms.erase(m_geom);
    m_body->SetGeoms(geoms);
    if (geoms.empty()) physics::Simulation::Instance().RemoveBody(m_body);
    m_body = nullptr;
}

bool GeomEntity::IsInSimulation() const {
    const physics::BodyPtr body = physics::BodyOf(m_geom);
    return body && physics::Simulation::Instance().HasBody(body);
}

// A held body still moves: the tool that holds it is the one that moves it. On an immovable body the shape
// is put elsewhere, and the body takes that in.
void GeomEntity::Transform(const math::RigidTransform& transform) {
    const physics::BodyPtr body = physics::BodyOf(m_geom);
    if (!body) return;
    if (body->m_massInv == 0) {
        m_geom->SetTransform(transform * m_geom->GetTransform());
        body->Settle();
        return;
    }
    body->m_pos = transform(body->m_pos);
    body->m_angle += transform.GetAngle();
    body->UpdateGeoms();
}

void GeomEntity::BeginMove() {
    Entity::BeginMove();
    m_startTransform = m_geom->GetTransform();
}

// From here on the body is what a file would make of it.
void GeomEntity::EndMove() {
    Entity::EndMove();
    const physics::BodyPtr body = physics::BodyOf(m_geom);
    if (body && !(m_geom->GetTransform() == m_startTransform)) body->Settle();
}

void GeomEntity::Serialize(EntitySerializer& out) const {
    Entity::Serialize(out);
    const physics::BodyPtr body = physics::BodyOf(m_geom);
    if (body) out["body"] = script::ValueToObject(static_cast<int>(body->GetID()));
    out["id"] = script::ValueToObject(static_cast<int>(m_geom->GetID()));
    out["pos"] = script::ValueToObject(m_geom->GetPos());
    out["angle"] = script::ValueToObject(m_geom->GetAngle());
}

void GeomEntity::Deserialize(const EntitySerializer& in) {
    Entity::Deserialize(in);
    math::Vec2 pos = m_geom->GetPos();
    double angle = m_geom->GetAngle();
    ReadKey(in, "pos", pos);
    ReadKey(in, "angle", angle);
    m_geom->SetAngleAndPos(angle, pos);
}

FiniteGeomEntity::FiniteGeomEntity(const String& name, const physics::GeomPtr& geom)
    : GeomEntity(name, geom),
      m_density(script::DeclareAttribGetSet<float>(
          *this, "density", geom->m_density, [target = geom.Get()] { return target->m_density; },
          [this](float density) { SetDensity(density); })) {}

void FiniteGeomEntity::SetDensity(float density) {
    if (!(density > 0) || !std::isfinite(density)) return;
    GetGeom()->m_density = density;
    GetGeom()->UpdateBody();
}

// A hexagonal grid over the bounding circle, as dense as the drops lie in water at rest; drops too near the
// outline are pushed in until they lie inside with their whole radius.
std::vector<math::Vec2> FiniteGeomEntity::GetWaterPoints(int most) const {
    const Geom& geom = *GetGeom();
    const math::real r = physics::SPH::Instance().m_radius->Get();
    const math::Vec3 circle = geom.GetBoundingCircle();
    const math::real R = circle.z;
    const math::Vec2 c(circle.x, circle.y);

    const double wanted = std::floor(geom.GetArea() / (math::PI * r * r) + 0.5);
    const double n = std::clamp(wanted, 1.0, static_cast<double>(std::max(most, 1)));
    // A sliver fills next to nothing of its circle; without an upper bound its grid would never end.
    constexpr double MAX_GRID = 4096;
    const double fill = math::PI * double(R) * R / geom.GetArea();
    const int d = static_cast<int>(std::clamp(std::floor(std::sqrt(n * fill) + 0.5), 1.0, MAX_GRID));

    std::vector<math::Vec2> points;
    for (int j = 0; j < d && points.size() <= n; ++j) {
        for (int i = 0; i < d; ++i) {
            const math::real u = static_cast<math::real>(i) + static_cast<math::real>(j % 2) * 0.5f;
            math::Vec2 p(((2 * u / d) - 1) * R + c.x, ((2.0f * j / d) - 1) * R + c.y);
            const math::real s = geom.GetDistance(p);
            if (!(s < 0)) continue;
            if (s > -r) p -= geom.GetNormal(p) * (std::fabs(r) - std::fabs(s));
            points.push_back(p);
        }
    }
    if (points.empty()) points.push_back(c);
    return points;
}

float CircConverter(float length, float size) {
    const float c = 2 * length / size;
    DATA_ASSERTION(0 <= c && c <= 2);
    return c < 1 ? c : 2 - c;
}

}  // namespace app
