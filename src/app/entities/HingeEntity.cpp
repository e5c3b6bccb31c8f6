#include "app/entities/HingeEntity.h"

#include <cmath>

#include "input/Input.h"
#include "input/Key.h"
#include "physics/Hinge.h"
#include "physics/Simulation.h"
#include "rendering/JointPainter.h"
#include "util/ProfileTree.h"

namespace app {

namespace {

constexpr float DEFAULT_SPEED = 1.5707964f;  // a quarter turn a second
constexpr float DEFAULT_TORQUE = 100;
const char* const ARROW_KEYS = "arrowkeys";

}  // namespace

HingeEntity::HingeEntity(math::real size)
    : JointEntity("Hinge", size),
      m_motor(script::DeclareAttrib(*this, "motor", false)),
      m_ccw(script::DeclareAttrib(*this, "ccw", false)),
      m_motorSpeed(script::DeclareAttrib(*this, "motorSpeed", DEFAULT_SPEED)),
      m_motorTorque(script::DeclareAttrib(*this, "motorTorque", DEFAULT_TORQUE)),
      m_controller(script::DeclareAttrib(*this, "controller", "")) {
    const util::CallbackPtr onChange = new util::Callback([this] { OnSettingChange(); }, this);
    m_motor->AddOnChange(onChange);
    m_ccw->AddOnChange(onChange);
    m_motorSpeed->AddOnChange(onChange);
    m_motorTorque->AddOnChange(onChange);
    m_controller->AddOnChange(onChange);
}

void HingeEntity::Rebuild() {
    RemoveFromSimulation();
    m_hinge = new physics::Hinge(GetEnd(0).geom, GetEnd(1).geom, GetEnd(0).pos, GetEnd(1).pos);
    PushSettings();
}

void HingeEntity::AddToSimulation() {
    if (m_hinge) physics::Simulation::Instance().AddConstraint(m_hinge);
}

void HingeEntity::RemoveFromSimulation() {
    if (m_hinge) physics::Simulation::Instance().RemoveConstraint(m_hinge);
}

// ---- the motor

// What is written back is a value of its own, and so what is saved: else each load would turn the motor
// round once more. The two write-backs call this again, with a speed that is not negative any more.
void HingeEntity::OnSettingChange() {
    const float speed = m_motorSpeed->Get();
    if (speed < 0) {
        m_motorSpeed->SetValue(script::ValueToObject(std::fabs(speed)));
        m_ccw->SetValue(script::ValueToObject(!m_ccw->Get()));
    }
    PushSettings();
}

float HingeEntity::GetSignedSpeed() const {
    return m_ccw->Get() ? -m_motorSpeed->Get() : m_motorSpeed->Get();
}

void HingeEntity::PushSettings() {
    if (!m_hinge) return;
    m_hinge->SetMotorSpeed(GetSignedSpeed());
    m_hinge->SetMotor(m_motor->Get());
    m_hinge->SetMotorTorque(m_motorTorque->Get());
}

void HingeEntity::ObeyArrowKeys() {
    const gui::Input& input = gui::Input::Instance();
    const float speed = GetSignedSpeed() * (input.IsKeyDownHere(gui::Key::Up) ? 2.0f : 1.0f);
    m_hinge->SetMotor(true);
    if (input.IsKeyDownHere(gui::Key::Down)) {
        m_hinge->SetMotorSpeed(0);
    } else if (input.IsKeyDownHere(gui::Key::Right)) {
        m_hinge->SetMotorSpeed(speed);
    } else if (input.IsKeyDownHere(gui::Key::Left)) {
        m_hinge->SetMotorSpeed(-speed);
    } else {
        m_hinge->SetMotor(false);
    }
}

void HingeEntity::Update(float dt) {
    JointEntity::Update(dt);
    if (m_hinge && m_controller->Get() == ARROW_KEYS) ObeyArrowKeys();
}

// ---- pins

// The end on the ground, or -1.
static int FindGroundEnd(const HingeEntity& hinge) {
    const physics::GeomPtr ground = physics::Simulation::Instance().GetWorldGeom();
    if (hinge.GetEnd(0).geom == ground) return 0;
    return hinge.GetEnd(1).geom == ground ? 1 : -1;
}

physics::GeomPtr HingeEntity::GetPinnedGeom() const {
    const int ground = FindGroundEnd(*this);
    return ground < 0 ? physics::GeomPtr() : GetEnd(1 - ground).geom;
}

void HingeEntity::CarryPin(const math::RigidTransform& transform) {
    const int ground = FindGroundEnd(*this);
    if (ground < 0) return;
    End ends[2] = {GetEnd(0), GetEnd(1)};
    ends[ground] = EndAt(ends[ground].geom, transform(GetPos(ground)));
    SetEnds(ends[0], ends[1]);
    if (m_hinge) m_hinge->SetAnchor(ground, ends[ground].pos);
}

// ---- entity

void HingeEntity::Draw() {
    PROFILE_SECTION("Hinge::Draw");
    if (!IsHidden()) rendering::JointPainter::Instance().DrawHinge(GetIconPlace(), GetSize(), GetDrawColor());
}

void HingeEntity::Serialize(EntitySerializer& out) const {
    JointEntity::Serialize(out);
    out["type"] = script::ValueToObject("hinge");
}

EntityPtr HingeEntity::Clone() const {
    const HingeEntityPtr clone = new HingeEntity(GetSize());
    clone->CopyValuesFrom(*this);
    return clone;
}

}  // namespace app
