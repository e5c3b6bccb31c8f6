#include "app/widgets/SimPlayPauseButton.h"

#include "app/Language.h"
#include "app/widgets/MenuButton.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "physics/Simulation.h"

namespace app {
namespace {

constexpr float SIZE = 32;  // GUI units

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
    SetToolTip(Translate(running ? "TipPause" : "TipPlay"));
}

void SimPlayPauseButton::Update(float dt) {
    AbstractToggleButton::Update(dt);
    const bool running = physics::Simulation::Instance().m_running->Get();
    if (running != (GetToggleState() == On)) Follow();
}

void SimPlayPauseButton::DrawComp() {
    MultStateColor();
    AbstractToggleButton::DrawComp();
    const math::Vec2 side(ICON_SIZE, ICON_SIZE), corner = (GetSize() - side) * 0.5f;
    gui::DrawImage(GetToggleState() == On ? m_pause : m_play, corner, corner + side);
    gui::Focus::DrawRing(*this);
}

}  // namespace app
