#include "app/entities/JointEntity.h"

#include <cmath>

#include "app/scene/Scene.h"
#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "util/Assert.h"

namespace app {

using math::real;
using math::Vec2;

namespace {

constexpr real ICON_REACH = 0.45f;       // half the side of what can be hit, in sizes
constexpr real KEEP_DISTANCE = 0.0001f;  // m, how far outside of a partner an end may lie

bool IsWorld(const physics::GeomPtr& geom) {
    return geom == physics::GeomPtr(physics::Simulation::Instance().GetWorldGeom());
}

bool HasBody(const physics::GeomPtr& geom) {
    return physics::Simulation::Instance().HasBody(BodyOf(geom));
}

}  // namespace

JointEntity::JointEntity(const String& name, real size) : Entity(name), m_size(size) {}

JointEntity::~JointEntity() noexcept(false) = default;

physics::BodyPtr JointEntity::GetEndBody(int i) const {
    return BodyOf(m_ends[i].geom);
}

JointEntity::End JointEntity::EndAt(const physics::GeomPtr& geom, Vec2 world) {
    return {geom, geom->GetInvTransform()(world)};
}

// ---- partners

bool JointEntity::KeepsPartner(int i, Vec2 point) const {
    const physics::GeomPtr& geom = m_ends[i].geom;
    return HasBody(geom) && !IsWorld(geom) && geom->GetDistance(point) < KEEP_DISTANCE;
}

void JointEntity::Attach(Vec2 p0, Vec2 p1) {
    CODE_ASSERTION(GetScene() != nullptr);
    const Vec2 points[2] = {p0, p1};
    physics::GeomPtr found[2];
    for (int i = 0; i < 2; ++i) {
        if (KeepsPartner(i, points[i])) found[i] = m_ends[i].geom;
    }
    for (int i = 0; i < 2; ++i) {
        if (found[i]) continue;
        found[i] = GetScene()->GetGeomAt(points[i], BodyOf(found[1 - i]));
    }
    m_orphaned = !found[0] || !found[1];
    if (m_orphaned) return;
    for (int i = 0; i < 2; ++i) {
        m_pos[i] = points[i];
        m_ends[i] = EndAt(found[i], points[i]);
    }
}

void JointEntity::SetEnds(const End& end0, const End& end1) {
    m_ends[0] = end0;
    m_ends[1] = end1;
    for (int i = 0; i < 2; ++i) m_pos[i] = m_ends[i].geom->GetTransform()(m_ends[i].pos);
    m_orphaned = false;
}

// An end that would fall back on the world is not taken: a wheel whose car was erased is free, not pinned
// to the sky.
void JointEntity::ReplaceLostPartners() {
    const bool lost[2] = {!HasBody(m_ends[0].geom), !HasBody(m_ends[1].geom)};
    if (!lost[0] && !lost[1]) return;
    RemoveFromSimulation();
    const int left = lost[0] ? 1 : 0;
    const physics::GeomPtr other =
        lost[left] ? nullptr : GetScene()->GetGeomAt(m_pos[1 - left], GetEndBody(left));
    m_orphaned = !other || IsWorld(other);
    if (m_orphaned) return;
    m_ends[1 - left] = EndAt(other, m_pos[1 - left]);
    Rebuild();
    AddToSimulation();
}

bool JointEntity::IsInSimulation() const {
    return !m_orphaned && HasBody(m_ends[0].geom) && HasBody(m_ends[1].geom);
}

void JointEntity::Update(float) {
    if (IsMoving()) return;
    ReplaceLostPartners();
    if (m_orphaned) return;
    for (int i = 0; i < 2; ++i) m_pos[i] = m_ends[i].geom->GetTransform()(m_ends[i].pos);
}

void JointEntity::ResetForRestore() {
    Entity::ResetForRestore();
    m_orphaned = false;
}

// ---- moving

void JointEntity::BeginMove() {
    Entity::BeginMove();
    m_startPos[0] = m_pos[0];
    m_startPos[1] = m_pos[1];
}

void JointEntity::Transform(const math::RigidTransform& transform) {
    for (Vec2& pos : m_pos) pos = transform(pos);
}

void JointEntity::EndMove() {
    Entity::EndMove();
    if (m_pos[0] == m_startPos[0] && m_pos[1] == m_startPos[1]) return;
    // What fuses its partners leaves them one, as long as they are the same.
    if (!KeepsPartner(0, m_pos[0]) || !KeepsPartner(1, m_pos[1])) RemoveFromSimulation();
    Attach(m_pos[0], m_pos[1]);
    if (m_orphaned) return;
    Rebuild();
    AddToSimulation();
}

// ---- the icon

math::RigidTransform JointEntity::GetIconPlace() const {
    const Vec2 middle = GetMiddle();
    if (!m_ends[0].geom) return {1, 0, middle.x, middle.y};
    const math::RigidTransform& turned = m_ends[0].geom->GetTransform();
    return {turned.cos, turned.sin, middle.x, middle.y};
}

bool JointEntity::IsHidden() const {
    return GetScene() != nullptr && GetScene()->HidesJointIcons();
}

bool JointEntity::IsPointInside(Vec2 point) const {
    if (IsHidden()) return false;
    const Vec2 local = GetIconPlace().Inverse()(point);
    const real reach = m_size * ICON_REACH;
    return std::fabs(local.x) <= reach && std::fabs(local.y) <= reach;
}

bool JointEntity::CrossesLines(const physics::LineList& lines) const {
    const math::RigidTransform place = GetIconPlace();
    const real reach = m_size * ICON_REACH;
    const physics::Line diagonals[] = {{place({-reach, -reach}), place({reach, reach})},
                                       {place({-reach, reach}), place({reach, -reach})}};
    for (const physics::Line& line : lines) {
        for (const physics::Line& diagonal : diagonals) {
            if (math::SegmentsIntersect(line.start, line.end, diagonal.start, diagonal.end)) return true;
        }
    }
    return false;
}

bool JointEntity::IsInsidePolygon(const physics::Polygon& polygon) const {
    return polygon.GetDistance(GetMiddle()) < 0;
}

math::BoundingBox2f JointEntity::GetBoundingBox() const {
    const Vec2 half(m_size / 2, m_size / 2);
    return {GetMiddle() - half, GetMiddle() + half};
}

// ---- files

void JointEntity::Serialize(EntitySerializer& out) const {
    Entity::Serialize(out);
    const char* const geomKeys[] = {"geom0", "geom1"};
    const char* const posKeys[] = {"geom0pos", "geom1pos"};
    for (int i = 0; i < 2; ++i) {
        out[geomKeys[i]] = script::ValueToObject(static_cast<int>(m_ends[i].geom->GetID()));
        out[posKeys[i]] = script::ValueToObject(m_ends[i].pos);
    }
    out["size"] = script::ValueToObject(m_size);
}

}  // namespace app
