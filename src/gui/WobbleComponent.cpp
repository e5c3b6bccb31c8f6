#include "gui/WobbleComponent.h"

#include <algorithm>
#include <cmath>

#include "rendering/Renderer.h"
#include "util/Redraw.h"

// A damped spring draws the target x after the place p:
//
//   v' = K (p - x) - D v,   x' = v,   K = 300 1/s^2, D = 20 1/s,
//
// integrated by semi-implicit Euler in steps of about 0.05 s, with which it is a little underdamped. A frame
// time between 1/15 and 0.075 s still makes one step, and that is just beyond the limit of stability; the
// lag is therefore bounded.
namespace gui {
namespace {

constexpr float STIFFNESS = 300;    // 1/s^2
constexpr float DAMPING = 20;       // 1/s
constexpr float STEP = 0.05f;       // seconds
constexpr float SETTLING_TIME = 5;  // seconds; beyond, nothing is left of any movement
constexpr float MAX_LAG = 0.9f;     // of the outer height; at 1 the picture would have no height left

using math::TMatrix3;
using math::Vec2;

}  // namespace

WobbleComponent::WobbleComponent(const String& name, const LayoutPtr& layout) : Component(name, layout) {}

// The caller's DrawChildren has pushed the matrix and pops it.
void WobbleComponent::Draw() {
    if (m_wobbleEnabled) rendering::Renderer::Instance().MultMatrix(GetPictureTransform());
    m_picture.Draw(GetOuterBox(), [this] { Component::Draw(); });
}

// From still to wobbling content coordinates: the shear leaves the outer corner where it is.
TMatrix3<float> WobbleComponent::GetPictureTransform() const {
    const Vec2 offset = GetContentOffset();
    return TMatrix3<float>::Translation(-offset.x, -offset.y) * m_wobbleMatrix *
           TMatrix3<float>::Translation(offset.x, offset.y);
}

TMatrix3<float> WobbleComponent::GetFromParent() const {
    const TMatrix3<float> still = Component::GetFromParent();
    return m_wobbleEnabled ? Inverted(GetPictureTransform()) * still : still;
}

void WobbleComponent::SetPos(float x, float y) {
    Component::SetPos(x, y);
    if (m_wobbleStarted) return;
    m_wobbleStarted = true;  // a window does not fly in from the origin
    m_wobbleTarget = {x, y};
}

void WobbleComponent::StopWobble() {
    m_wobbleTarget = GetPos();
    m_wobbleVelocity = {};
    m_wobbleMatrix = TMatrix3<float>();
}

void WobbleComponent::Update(float dt) {
    Component::Update(dt);
    if (!m_wobbleEnabled || !(dt < SETTLING_TIME)) {
        StopWobble();
        return;
    }
    if (dt > 0) {
        const int nSteps = std::max(1, static_cast<int>(std::lround(dt / STEP)));
        for (int i = 0; i < nSteps; ++i) Step(dt / nSteps);
    }
    UpdateMatrix();
    constexpr float VISIBLE = 0.25f;  // GUI units
    if (math::Length(GetWobbleLag()) > VISIBLE) util::Redraw::Request();
}

void WobbleComponent::Step(float h) {
    m_wobbleVelocity += h * (STIFFNESS * (GetPos() - m_wobbleTarget) - DAMPING * m_wobbleVelocity);
    m_wobbleTarget += h * m_wobbleVelocity;
    LimitLag();
}

void WobbleComponent::LimitLag() {
    const float limit = MAX_LAG * GetOuterSize().y;
    const Vec2 lag = GetWobbleLag();
    const bool isShort = std::fabs(lag.x) <= limit && std::fabs(lag.y) <= limit;
    if (isShort && math::IsFinite(m_wobbleVelocity)) return;
    if (!IsHeld() || !math::IsFinite(lag) || !math::IsFinite(m_wobbleVelocity)) {
        StopWobble();
        return;
    }
    m_wobbleTarget = GetPos() - Vec2(std::clamp(lag.x, -limit, limit), std::clamp(lag.y, -limit, limit));
}

void WobbleComponent::UpdateMatrix() {
    m_wobbleMatrix = TMatrix3<float>();
    const float outerHeight = GetOuterSize().y;
    if (!(outerHeight > 0)) return;
    const Vec2 lag = GetWobbleLag();
    m_wobbleMatrix.m[0][1] = -lag.x / outerHeight;
    m_wobbleMatrix.m[1][1] = 1 - lag.y / outerHeight;
}

}  // namespace gui
