#include "app/windows/StatsWindow.h"

#include <boost/format.hpp>

#include "app/Language.h"
#include "app/scene/Scene.h"
#include "gui/GUI.h"
#include "gui/components/Label.h"
#include "input/WindowHost.h"
#include "physics/Simulation.h"

namespace app {
namespace {

constexpr float WIDTH = 180;  // GUI units; wide enough for all counts, so that they do not move the edge

String GetFrameRate() {
    const gui::WindowHost* const host = gui::GUI::Instance().GetWindowHost();
    const double rate = host ? host->GetFPS() : 0;
    if (!(rate > 0)) return String();
    return boost::str(boost::format("%.0f frames per second\n") % rate);
}

}  // namespace

StatsWindow::StatsWindow(const Scene& scene)
    : Window(Translate("StatsTitle"), new gui::ListLayout(gui::ListLayout::Vertical)),
      m_scene(scene),
      m_text(new gui::Label) {
    AddChild(m_text);
}

StatsWindow::~StatsWindow() noexcept(false) = default;

void StatsWindow::Update(float dt) {
    ShowText();
    Window::Update(dt);
}

void StatsWindow::ShowText() {
    String text = GetFrameRate() + physics::Simulation::Instance().GetStats();
    if (!m_scene.GetName().empty()) text += "Scene: " + m_scene.GetName() + "\n";
    if (!text.empty()) text.pop_back();
    if (text == m_text->GetText()) return;
    m_text->SetText(text);
    if (m_text->GetSize().x < WIDTH) m_text->SetSize(WIDTH, m_text->GetSize().y);
}

}  // namespace app
