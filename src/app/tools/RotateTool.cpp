#include "app/tools/RotateTool.h"

#include <cmath>

#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Input.h"
#include "input/Key.h"
#include "math/Geometry.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace app {

using math::real;
using math::Vec2;

namespace {

// Nearer to the pivot the mouse's angle is too unsteady to turn by, in cm on the screen.
constexpr real DEAD_RADIUS = 2;
constexpr real SNAP_STEP = math::PI / 12;
constexpr real PIVOT_PICTURE = 0.3f;        // half its side, in cm on the screen
constexpr real SWEEP_STEP = math::PI / 36;  // between corners of the drawn fan
const math::Vec4 SWEEP_COLOR(0.5f, 0.5f, 1.0f, 0.5f);

real AngleOf(Vec2 v) {
    return std::atan2(v.y, v.x);
}

// As by the sign of the shorter way round; 0 for what is no number.
real StepAngle(Vec2 from, Vec2 to) {
    real step = std::fmod(AngleOf(to) - AngleOf(from), math::TWO_PI);
    if (step > math::PI) step -= math::TWO_PI;
    if (step < -math::PI) step += math::TWO_PI;
    return std::isfinite(step) ? step : 0;
}

math::RigidTransform RotationAbout(Vec2 pivot, real angle) {
    return math::RigidTransform(angle, pivot) * math::RigidTransform(0, -pivot);
}

}  // namespace

RotateTool::RotateTool(const Workbench& bench)
    : Tool(bench),
      m_drag(bench.m_scene),
      m_pivotTexture(rendering::TextureManager::Instance().Get("rotate_origo.png")) {}

void RotateTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::RightMouse) return;
    const Vec2 world = m_view.GUIToWorld(event.m_position);
    if (!m_drag.Take(world)) return;
    event.m_handled = true;
    m_pivot = m_scene.GetSelection().GetCenter(world);
    m_accumulated = m_applied = 0;
}

void RotateTool::OnDrag(gui::DragEvent& event) {
    if (!m_drag.IsTaken() || event.m_key != gui::Key::RightMouse) return;
    event.m_handled = true;
    const Vec2 mouse = m_view.GUIToWorld(event.m_position);
    if (!m_drag.IsHolding()) {
        if (math::Length(mouse - m_pivot) <= DEAD_RADIUS * m_view.GetCmToWorld()) return;
        Start(mouse);
    }
    Turn(mouse);
}

void RotateTool::Start(Vec2 mouse) {
    m_drag.Hold();
    m_lastMouse = mouse;
    m_startAngle = AngleOf(mouse - m_pivot);
}

void RotateTool::Turn(Vec2 mouse) {
    m_accumulated += StepAngle(m_lastMouse - m_pivot, mouse - m_pivot);
    m_accumulated = std::fmod(m_accumulated, math::TWO_PI);
    m_lastMouse = mouse;
    real angle = m_accumulated;
    if (gui::Input::Instance().IsModifierDown(gui::Modifier::Shift)) {
        angle = std::floor(angle / SNAP_STEP + 0.5f) * SNAP_STEP;
    }
    m_drag.Transform(RotationAbout(m_pivot, angle - m_applied));
    m_applied = angle;
}

void RotateTool::OnDragEnd(gui::DragEvent& event) {
    if (!m_drag.IsTaken() || event.m_key != gui::Key::RightMouse) return;
    event.m_handled = true;
    m_drag.Finish("UndoRotate");
}

bool RotateTool::Cancel() {
    const bool wasTaken = m_drag.IsTaken();
    m_drag.Revert();
    return wasTaken;
}

void RotateTool::Draw() {
    if (!m_drag.IsHolding()) return;
    DrawSweep();
    DrawPivot();
}

void RotateTool::DrawSweep() const {
    const rendering::ScopedColor color(SWEEP_COLOR);
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    const real radius = math::Length(m_lastMouse - m_pivot);
    const int steps = static_cast<int>(std::fabs(m_applied) / SWEEP_STEP) + 1;
    glBegin(GL_TRIANGLE_FAN);
    glVertex2f(m_pivot.x, m_pivot.y);
    for (int i = 0; i <= steps; ++i) {
        const real angle = m_startAngle + m_applied * i / steps;
        glVertex2f(m_pivot.x + radius * std::cos(angle), m_pivot.y + radius * std::sin(angle));
    }
    glEnd();
}

void RotateTool::DrawPivot() {
    const rendering::ScopedTexture texture(m_pivotTexture->Get());
    const rendering::ScopedColor white({1, 1, 1, 1});
    const real half = PIVOT_PICTURE * m_view.GetCmToWorld();
    rendering::Renderer::Instance().DrawQuad(m_pivot - Vec2(half, half), m_pivot + Vec2(half, half));
}

}  // namespace app
