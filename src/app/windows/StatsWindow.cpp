#include "app/windows/StatsWindow.h"

#include <algorithm>
#include <boost/format.hpp>

#include "app/Language.h"
#include "app/scene/Scene.h"
#include "app/scene/SceneSettings.h"
#include "gui/GUI.h"
#include "gui/components/Label.h"
#include "input/WindowHost.h"
#include "physics/Simulation.h"
#include "util/Clock.h"

namespace app {
namespace {

constexpr float WIDTH = 180;  // GUI units; wide enough for all counts, so that they do not move the edge
constexpr double SMOOTHING_TIME = 1;   // s, of the frame rate
constexpr float REFRESH_TIME = 0.25f;  // s, or the figures could not be read

String Count(size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + Translate(count == 1 ? one : many) + "\n";
}

String GetPace(const physics::Simulation& simulation) {
    if (!simulation.m_running->Get()) return Translate("StatStopped");
    const float fraction = simulation.GetRealtimeFraction();
    if (fraction >= 1) return Translate("StatRunning");
    return boost::str(boost::format("%.0f%%, %s") % (fraction * 100) % Translate("StatSlow"));
}

String GetCounts(const physics::Simulation& simulation) {
    constexpr size_t WORLD_BODY = 1;
    const size_t joints = simulation.GetJoints().size() + simulation.GetHinges().size();
    return Count(simulation.GetBodies().size() - WORLD_BODY, "StatBody", "StatBodies") +
           Count(simulation.GetParticles().size(), "StatDrop", "StatDrops") +
           Count(simulation.GetContacts().size(), "StatContact", "StatContacts") +
           Count(joints, "StatJoint", "StatJoints");
}

}  // namespace

void SmoothedFrameRate::Follow() {
    const gui::WindowHost* const host = gui::GUI::Instance().GetWindowHost();
    const double rate = host ? host->GetFPS() : 0;
    const double now = util::Clock::Now(), dt = now - m_lastTime;
    m_lastTime = now;
    if (!(rate > 0)) return;
    const double part = m_rate > 0 ? std::clamp(dt / SMOOTHING_TIME, 0.0, 1.0) : 1;
    m_rate += (rate - m_rate) * part;
}

String DescribeWorld() {
    const physics::Simulation& simulation = physics::Simulation::Instance();
    return GetCounts(simulation) + GetPace(simulation);
}

StatsWindow::StatsWindow(const Scene& scene)
    : Window(Translate("StatsTitle"), new gui::ListLayout(gui::ListLayout::Vertical)),
      m_scene(scene),
      m_text(new gui::Label) {
    AddChild(m_text);
}

StatsWindow::~StatsWindow() noexcept(false) = default;

void StatsWindow::Update(float dt) {
    m_frameRate.Follow();
    m_sinceRefresh += dt;
    if (m_sinceRefresh >= REFRESH_TIME || m_text->GetText().empty()) ShowText();
    Window::Update(dt);
}

void StatsWindow::ShowText() {
    m_sinceRefresh = 0;
    String text = DescribeWorld();
    if (m_frameRate.Get() > 0)
        text = boost::str(boost::format("%s: %.0f\n") % Translate("InfoFPS") % m_frameRate.Get()) + text;
    if (!m_scene.GetName().empty()) text += "\n" + Translate("StatScene") + ": " + m_scene.GetName();
    if (!m_scene.GetSettings().Get().empty()) text += "\n" + Translate("StatOwnSettings");
    if (text == m_text->GetText()) return;
    m_text->SetText(text);
    if (m_text->GetSize().x < WIDTH) m_text->SetSize(WIDTH, m_text->GetSize().y);
}

}  // namespace app
