#include "app/widgets/SimPlayPauseButton.h"

#include <cmath>

#include "app/Language.h"
#include "app/widgets/MenuButton.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "math/Geometry.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"
#include "util/Clock.h"

namespace app {
namespace {

constexpr float SIZE = 32;            // GUI units
constexpr double PULSE_TIME = 2.4;    // seconds
constexpr double PULSE_COUNT = 2;     // within that time
constexpr float PULSE_GROWTH = 1.2f;  // of the picture, at its largest

}  // namespace

SimPlayPauseButton::SimPlayPauseButton()
    : AbstractToggleButton("SimPlayPauseButton"),
      m_play(GetIcon("tools/play")),
      m_pause(GetIcon("tools/pause")) {
    SetKey("TipPlay");
    SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    SetSize(SIZE, ICON_SIZE);
    Follow();
}

void SimPlayPauseButton::SetState(State state) {
    physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(state == On));
    AbstractToggleButton::SetState(state);
    Follow();
}

// A key or a script may have run or stopped it.
void SimPlayPauseButton::Follow() {
    const bool running = physics::Simulation::Instance().m_running->Get();
    SetStateSilent(running ? On : Off);
    if (running) m_pulseStart = -1;
    SetToolTip(Translate(running ? "TipPause" : "TipPlay"));
}

void SimPlayPauseButton::Update(float dt) {
    AbstractToggleButton::Update(dt);
    const bool running = physics::Simulation::Instance().m_running->Get();
    if (running != (GetToggleState() == On) || (running && m_pulseStart >= 0)) Follow();
}

void SimPlayPauseButton::Pulse() {
    m_pulseStart = util::Clock::Now();
}

float SimPlayPauseButton::GetPulse() const {
    const double age = (util::Clock::Now() - m_pulseStart) / PULSE_TIME;
    if (m_pulseStart < 0 || age < 0 || age > 1) return 0;
    return static_cast<float>(0.5 - 0.5 * std::cos(2 * math::PI * PULSE_COUNT * age));
}

void SimPlayPauseButton::DrawComp() {
    MultStateColor();
    AbstractToggleButton::DrawComp();
    const float pulse = GetPulse();
    rendering::Renderer::Instance().MultColor({1 + pulse * 0.3f, 1 + pulse * 0.3f, 1, 1});
    const float side = ICON_SIZE * (1 + PULSE_GROWTH * pulse);
    const math::Vec2 corner = (GetSize() - math::Vec2(side, side)) * 0.5f;
    gui::DrawImage(GetToggleState() == On ? m_pause : m_play, corner, corner + math::Vec2(side, side));
    gui::Focus::DrawRing(*this);
}

}  // namespace app
