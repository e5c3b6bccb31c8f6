#include "app/widgets/StartButton.h"

#include <cmath>

#include "app/Language.h"
#include "app/widgets/MenuButton.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "math/Geometry.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"
#include "script/Conversions.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace app {
namespace {

constexpr double PULSE_START = 0.6;     // seconds after the first picture
constexpr double PULSE_TIME = 1.2;      // seconds
constexpr float PULSE_GROWTH = 0.5f;    // of the picture, at its largest
constexpr float PICTURE_SHARE = 0.75f;  // of the button's side, at rest
constexpr float GLOW = 0.3f;            // added to the brightness of the largest picture

}  // namespace

StartButton::StartButton(float side) : AbstractButton("StartButton"), m_picture(GetIcon("tools/play")) {
    SetKey("TipPlay");
    SetToolTip(Translate("TipPlay"));
    const gui::Border& border = gui::LookAndFeel::Get().GetButtonBorder();
    SetBorder(border);
    SetSize(side - border.GetLeft() - border.GetRight(), side - border.GetTop() - border.GetBottom());
    AddAction([] { physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(true)); });
}

float StartButton::GetPulse() {
    const double now = util::Clock::Now();
    if (m_firstDrawn < 0) m_firstDrawn = now;
    const double age = (now - m_firstDrawn - PULSE_START) / PULSE_TIME;
    if (age <= 1) util::Redraw::Request();
    if (age < 0 || age > 1) return 0;
    return static_cast<float>(0.5 - 0.5 * std::cos(2 * math::PI * age));
}

void StartButton::DrawComp() {
    MultStateColor();
    AbstractButton::DrawComp();
    const float pulse = GetPulse();
    rendering::Renderer::Instance().MultColor({1 + pulse * GLOW, 1 + pulse * GLOW, 1, 1});
    const float length = GetSize().y * PICTURE_SHARE * (1 + PULSE_GROWTH * pulse);
    const math::Vec2 side(length, length), corner = (GetSize() - side) * 0.5f;
    gui::DrawImage(m_picture, corner, corner + side);
    gui::Focus::DrawRing(*this);
}

}  // namespace app
