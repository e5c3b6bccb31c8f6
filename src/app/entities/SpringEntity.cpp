#include "app/entities/SpringEntity.h"

#include "app/entities/EntityReader.h"
#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Joints.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "rendering/JointPainter.h"
#include "util/ProfileTree.h"

namespace app {

using math::Vec2;

namespace {

constexpr float DEFAULT_STRENGTH = 0.05f;
constexpr float DEFAULT_DAMPING = 0.1f;

}  // namespace

SpringEntity::SpringEntity(math::real size)
    : JointEntity("Spring", size),
      m_strengthFactor(script::DeclareAttrib(*this, "strengthFactor", DEFAULT_STRENGTH)),
      m_dampingFactor(script::DeclareAttrib(*this, "dampingFactor", DEFAULT_DAMPING)) {
    SetColor({1, 1, 1});
    const util::CallbackPtr onChange = new util::Callback([this] { PushSettings(); }, this);
    m_strengthFactor->AddOnChange(onChange);
    m_dampingFactor->AddOnChange(onChange);
}

void SpringEntity::Rebuild() {
    RemoveFromSimulation();
    m_length = math::Length(GetPos(1) - GetPos(0));
    m_joint = new physics::SpringJoint(GetEnd(0).geom, GetEnd(1).geom, GetEnd(0).pos, GetEnd(1).pos, m_length,
                                       1, 1);
    PushSettings();
}

void SpringEntity::PushSettings() {
    if (!m_joint) return;
    m_joint->SetStrength(m_strengthFactor->Get());
    m_joint->SetDamping(m_dampingFactor->Get());
}

void SpringEntity::SetLength(math::real length) {
    m_length = length;
    if (m_joint) m_joint->SetLength(length);
}

void SpringEntity::AddToSimulation() {
    if (m_joint) physics::Simulation::Instance().AddJoint(m_joint);
}

void SpringEntity::RemoveFromSimulation() {
    if (m_joint) physics::Simulation::Instance().RemoveJoint(m_joint);
}

bool SpringEntity::IsWithinOneBody() const {
    const physics::BodyPtr body = GetEndBody(0);
    return body && body == GetEndBody(1);
}

bool SpringEntity::IsInSimulation() const {
    return JointEntity::IsInSimulation() && !IsWithinOneBody();
}

// ---- the strip

bool SpringEntity::IsPointInside(Vec2 point) const {
    const Vec2 closest = math::ClosestPointOnSegment(GetPos(0), GetPos(1), point);
    return math::Length(point - closest) <= GetSize() / 2;
}

bool SpringEntity::CrossesLines(const physics::LineList& lines) const {
    for (const physics::Line& line : lines) {
        if (math::SegmentsIntersect(line.start, line.end, GetPos(0), GetPos(1))) return true;
    }
    return false;
}

bool SpringEntity::IsInsidePolygon(const physics::Polygon& polygon) const {
    return polygon.GetDistance(GetPos(0)) < 0 && polygon.GetDistance(GetPos(1)) < 0;
}

math::BoundingBox2f SpringEntity::GetBoundingBox() const {
    math::BoundingBox2f box;
    box.Extend(GetPos(0));
    box.Extend(GetPos(1));
    const Vec2 half(GetSize() / 2, GetSize() / 2);
    return {box.min - half, box.max + half};
}

// ---- entity

void SpringEntity::Draw() {
    PROFILE_SECTION("Spring::Draw");
    rendering::JointPainter::Instance().DrawSpring(GetPos(0), GetPos(1), GetSize(), m_length, GetDrawColor());
}

void SpringEntity::Serialize(EntitySerializer& out) const {
    JointEntity::Serialize(out);
    out["type"] = script::ValueToObject("spring");
    out["length"] = script::ValueToObject(m_length);
}

void SpringEntity::Deserialize(const EntitySerializer& in) {
    JointEntity::Deserialize(in);
    math::real length = m_length;
    ReadKey(in, "length", length);
    SetLength(length);
}

EntityPtr SpringEntity::Clone() const {
    const SpringEntityPtr clone = new SpringEntity(GetSize());
    clone->CopyValuesFrom(*this);
    clone->m_length = m_length;
    return clone;
}

}  // namespace app
