#include "physics/Body.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "logging/Log.h"
#include "math/Geometry.h"
#include "physics/Geom.h"
#include "physics/SolverBody.h"
#include "util/Assert.h"
#include "util/LockPtr.h"

namespace physics {

using math::real;
using math::RigidTransform;
using math::Vec2;

namespace {

constexpr real INF = std::numeric_limits<real>::infinity();

}  // namespace

// ---- AbstractBody --------------------------------------------------------------------------------------

uint32_t AbstractBody::s_nextID = 0;

AbstractBody::AbstractBody() : m_inertia(INF), m_mass(INF), m_id(s_nextID++) {}

AbstractBody::AbstractBody(const AbstractBody& other)
    : util::Pointee(other),
      m_pos(other.m_pos),
      m_vel(other.m_vel),
      m_force(other.m_force),
      m_angle(other.m_angle),
      m_angVel(other.m_angVel),
      m_torque(other.m_torque),
      m_inertia(INF),
      m_mass(INF),
      m_id(s_nextID++) {}

AbstractBody::~AbstractBody() noexcept(false) = default;

void AbstractBody::SetHeld(bool held) {
    m_held = held;
    if (!held) return;
    m_vel = Vec2();
    m_angVel = 0;
}

// ---- Body ----------------------------------------------------------------------------------------------

Body::Body() = default;

Body::Body(const GeomPtr& geom) {
    // The geom's hold on this body outlives the constructor, so that its pointer may be taken here.
    SetGeom(geom);
}

Body::Body(const Body& other)
    : AbstractBody(other), m_transform(other.m_transform), m_invTransform(other.m_invTransform) {}

Body::~Body() noexcept(false) = default;

void Body::SetGeom(const GeomPtr& geom) {
    SetGeoms(GeomSet{geom});
}

void Body::AddGeoms(const GeomSet& geoms) {
    GeomSet all = m_geoms;
    all.insert(geoms.begin(), geoms.end());
    SetGeoms(all);
}

void Body::AddGeom(const GeomPtr& geom) {
    AddGeoms(GeomSet{geom});
}

void Body::RefreshGeoms() {
    SetGeoms(m_geoms);
}

void Body::SetGeoms(const GeomSet& newGeoms) {
    // The argument may be this body's own set, which is emptied first; and the geoms may be all that keeps
    // the body alive.
    const GeomSet geoms = newGeoms;
    const util::LockPtr<Body> lock(this);
    const bool wasPlaced = !m_parts.empty();
    const Vec2 oldPos = m_pos;
    DetachGeoms();
    BuildFrom(geoms);
    if (wasPlaced && !m_parts.empty()) m_vel = VelocityAt(m_vel, m_angVel, m_pos - oldPos);
}

void Body::BuildFrom(const GeomSet& geoms) {
    if (geoms.empty()) {
        BecomeUnitMass();
        return;
    }
    const GeomSet accepted = SumUpMass(geoms);
    if (accepted.empty()) {
        BecomeUnitMass();
        return;
    }
    PlaceFrame();
    for (const GeomPtr& geom : accepted) AttachGeom(geom);
    FinishInertia();
}

BodyPtr Body::Split(const GeomSet& leaving) {
    const Vec2 oldPos = m_pos, oldVel = m_vel;
    GeomSet staying;
    for (const GeomPtr& geom : m_geoms) {
        if (!leaving.count(geom)) staying.insert(geom);
    }
    SetGeoms(staying);
    const BodyPtr part = new Body;
    part->SetGeoms(leaving);
    part->m_vel = VelocityAt(oldVel, m_angVel, part->m_pos - oldPos);
    part->m_angVel = m_angVel;
    return part;
}

// P = m0 v0 + m1 v1,  L = sum of I w + m (x - c) x v about the common centre c
//   v = P / m,  w = L / I
void Body::Absorb(Body& other) {
    const Body* const bodies[] = {this, &other};
    struct Motion {
        real mass, inertia, angVel;
        Vec2 pos, vel;
    } before[2];
    for (int i = 0; i < 2; ++i) {
        const Body& body = *bodies[i];
        before[i] = {body.m_mass, body.m_inertia, body.m_angVel, body.m_pos, body.m_vel};
    }
    const GeomSet geoms = other.m_geoms;
    other.SetGeoms(GeomSet());
    AddGeoms(geoms);
    m_vel = Vec2();
    m_angVel = 0;
    if (m_massInv == 0) return;
    for (const Motion& part : before) {
        m_vel += part.mass * part.vel * m_massInv;
        m_angVel +=
            (part.inertia * part.angVel + part.mass * math::Cross(part.pos - m_pos, part.vel)) * m_inertiaInv;
    }
}

Body::State Body::GetState() const {
    State state{m_parts,  {},       m_transform, m_pos,     m_vel,     m_force,      m_angle,
                m_angVel, m_torque, m_mass,      m_massInv, m_inertia, m_inertiaInv, m_area};
    state.places.reserve(m_parts.size());
    for (const BodyPart& part : m_parts) state.places.push_back(part.geom->GetPlace());
    return state;
}

void Body::SetState(const State& state) {
    const util::LockPtr<Body> lock(this);
    DetachGeoms();
    m_parts = state.parts;
    m_transform = state.transform;
    m_invTransform = m_transform.Inverse();
    m_pos = state.pos;
    m_vel = state.vel;
    m_force = state.force;
    m_angle = state.angle;
    m_angVel = state.angVel;
    m_torque = state.torque;
    m_mass = state.mass;
    m_massInv = state.massInv;
    m_inertia = state.inertia;
    m_inertiaInv = state.inertiaInv;
    m_area = state.area;
    for (size_t i = 0; i < m_parts.size(); ++i) {
        const GeomPtr& geom = m_parts[i].geom;
        geom->SetPlace(state.places[i]);
        geom->SetBody(this);
        m_geoms.insert(geom);
    }
}

void Body::Settle() {
    for (const BodyPart& part : m_parts)
        part.geom->SetAngleAndPos(part.geom->GetAngle(), part.geom->GetPos());
    RefreshGeoms();
}

void Body::DetachGeoms() {
    for (const BodyPart& part : m_parts) {
        if (part.geom->GetBodyPtr() == this) part.geom->SetBody(nullptr);
    }
    m_parts.clear();
    m_geoms.clear();
    m_coreRadius = UNKNOWN;
}

void Body::BecomeUnitMass() {
    m_mass = 1;
    m_massInv = 1;
    m_inertia = 1;
    m_inertiaInv = 1;
}

// Sums mass, area and (into m_pos) the first moment of the usable geoms, which it returns.
GeomSet Body::SumUpMass(const GeomSet& geoms) {
    GeomSet accepted;
    m_angle = 0;
    m_pos = Vec2();
    m_area = 0;
    m_inertia = 0;
    m_mass = 0;
    for (const GeomPtr& geom : geoms) {
        if (!geom) continue;
        const real area = geom->GetArea();
        const real mass = geom->m_density * area;
        const real inertia = geom->m_density * area * geom->GetInertiaSansMass();
        const Vec2 center = geom->GetPos();
        if (!(mass > 0) || !(area > 0) || !(inertia > 0) || !IsFinite(center)) {
            Log(logging::Warning, "Bad geometry in Body::AddGeoms");
            continue;
        }
        m_mass += mass;
        m_area += area;
        if (IsFinite(mass)) m_pos += mass * center;
        accepted.insert(geom);
    }
    return accepted;
}

// The frame's origin is the centre of mass, or the world's origin for infinite mass.
void Body::PlaceFrame() {
    m_pos = IsFinite(m_mass) && IsFinite(m_pos) ? m_pos / m_mass : Vec2();
    m_transform = RigidTransform(1, 0, m_pos.x, m_pos.y);
    m_invTransform = m_transform.Inverse();
    m_massInv = 1 / m_mass;
    m_inertia = 0;
}

// The geom's inertia about the body's origin is its own plus m d^2 (Steiner). For infinite mass this gives
// NaN; FinishInertia knows.
void Body::AttachGeom(const GeomPtr& geom) {
    const real mass = geom->m_density * geom->GetArea();
    m_inertia += mass * geom->GetInertiaSansMass() + math::LengthSquared(m_pos - geom->GetPos()) * mass;
    const RigidTransform toGeom = geom->GetInvTransform() * m_transform;
    m_parts.push_back({geom, toGeom, toGeom.Inverse()});
    geom->SetBody(this);
    m_geoms.insert(geom);
}

void Body::FinishInertia() {
    if (!IsFinite(m_mass)) m_inertia = INF;
    m_inertiaInv = 1 / m_inertia;
    CODE_CHECK_TEXT(IsFinite(m_massInv) && m_massInv >= 0, "IsFinite(m_massInv) && m_massInv>=0");
    CODE_CHECK_TEXT(IsFinite(m_inertiaInv) && m_inertiaInv >= 0, "IsFinite(m_inertiaInv) && m_inertiaInv>=0");
    CheckParts();
}

void Body::CheckParts() const {
    for (const BodyPart& part : m_parts) {
        CODE_CHECK_TEXT(part.geom->GetBodyPtr() == this, "bp->geom->GetBodyPtr() == this");
    }
}

void Body::UpdateGeoms() {
    m_angle = math::WrapAngle(m_angle);
    m_transform = RigidTransform(m_angle, m_pos);
    m_invTransform = m_transform.Inverse();
    for (const BodyPart& part : m_parts) part.geom.Get()->SetTransform(m_transform * part.fromGeom);
}

real Body::GetCoreRadius() const {
    if (m_coreRadius != UNKNOWN) return m_coreRadius;
    m_coreRadius = INF;
    for (const BodyPart& part : m_parts) m_coreRadius = std::min(m_coreRadius, part.geom->GetCoreRadius());
    return m_coreRadius;
}

BodyPtr BodyOf(const GeomPtr& geom) {
    return geom ? util::DynamicCast<Body>(geom->GetBody()) : BodyPtr();
}

}  // namespace physics
