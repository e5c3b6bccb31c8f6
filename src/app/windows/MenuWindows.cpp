#include "app/windows/MenuWindows.h"

#include <cmath>

#include "app/Language.h"
#include "app/drawing/DrawSettings.h"
#include "app/history/Actions.h"
#include "app/history/Undoer.h"
#include "app/scene/AppGUISettings.h"
#include "app/scene/Scene.h"
#include "app/windows/Rows.h"
#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "gui/Window.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/LabeledSlider.h"
#include "gui/components/ScrollArea.h"
#include "physics/Simulation.h"
#include "rendering/Context.h"
#include "rendering/Renderer.h"
#include "script/Conversions.h"

namespace app {
namespace {

using gui::ComponentPtr;
using physics::Simulation;

struct MenuRow {
    const char* m_command;
    const char* m_suffix;
};

const MenuRow FILE_ROWS[] = {
    {"NewScene", ""},
    {"SaveScene", "..."},
    {"LoadScene", "..."},
    {"ImportScene", "..."},
    {"ClearScene", ""},
    {"EraseWater", ""},
    {"ResetView", ""},
    {"FitScene", ""},
    {"ToggleFullscreen", ""},
    {"ChangeLanguage", "..."},
    {"ShowInfo", ""},
    {"ShowAbout", ""},
    {"Exit", ""},
};

constexpr double MAX_GRAVITY = 30;  // m/s^2
constexpr double EARTH_GRAVITY = 9.8;
constexpr double MAX_AIR_FRICTION = 0.5;
constexpr double NORMAL_AIR_FRICTION = 0.01;
constexpr double MIN_SPEED = 0.01;
constexpr double MAX_SPEED = 10;
constexpr double MIN_DPI = 50;
constexpr double MAX_DPI = 400;
constexpr int SHADERS_ROW = 5;               // among the options
constexpr float SCALES[] = {1, 1.5f, 2, 3};  // pixels per GUI unit
constexpr math::Vec4 CURRENT_COLOR(1.4f, 1.4f, 1.6f, 1);
constexpr math::Vec4 OTHER_COLOR(0.8f, 0.8f, 0.85f, 1);

// Downwards is up on the slider; the sideways part of gravity stays.
ComponentPtr MakeGravityRow() {
    const auto get = [] { return -double(Simulation::Instance().m_gravity->Get().y); };
    const auto set = [](double value) {
        const auto& gravity = Simulation::Instance().m_gravity;
        const math::Vec2 wanted(gravity->Get().x, static_cast<float>(-value));
        gravity->SetValue(script::ValueToObject(wanted));
    };
    const gui::SliderPtr slider = new gui::FunctionSlider(0, MAX_GRAVITY, get, set);
    slider->SetDefault(EARTH_GRAVITY);
    return MakeSliderRow("Gravity", slider, {1, " m/s2"});
}

ComponentPtr MakeAirRow() {
    const gui::SliderPtr slider =
        new gui::AttribSlider(0, MAX_AIR_FRICTION, Simulation::Instance().m_airFrictionLinear);
    slider->SetDefault(NORMAL_AIR_FRICTION);
    return MakeSliderRow("AirFriction", slider, {3, ""});
}

ComponentPtr MakeSpeedRow() {
    const gui::SliderPtr slider =
        new gui::AttribSlider(MIN_SPEED, MAX_SPEED, Simulation::Instance().m_timeFactor);
    slider->SetLogarithmic(true);
    slider->SetDefault(1);
    return MakeSliderRow("SimSpeed", slider, {2, "x"});
}

// Whether gravity, air and water are the scene's own and are saved with it.
class SceneSettingsCheckbox : public gui::Checkbox {
  public:
    explicit SceneSettingsCheckbox(SceneSettings& settings)
        : Checkbox(Translate("OnlyThisScene"), "SceneSettingsCheckbox"), m_settings(settings) {
        SetKey("OnlyThisScene");
        SetToolTip(Translate("TipOnlyThisScene"));
    }

    void Update(float dt) override {
        Checkbox::Update(dt);
        SetStateSilent(m_settings.IsEmpty() ? Off : On);
    }
    void SetState(State state) override {
        if ((state == On) == m_settings.IsEmpty()) {
            Undoer::Instance().Do(new ToggleSceneSettings(m_settings));
        }
        Checkbox::SetState(state);
    }

  private:
    SceneSettings& m_settings;
};

// A scale of the interface to choose; lit while it is the present one.
class ScaleButton : public gui::Button {
  public:
    explicit ScaleButton(float scale)
        : Button(std::to_string(std::lround(scale * 100)) + "%", "ScaleButton"), m_scale(scale) {}

    void OnPressed() override {
        gui::GUI::Instance().SetScale(m_scale);
        Button::OnPressed();
    }
    script::ObjectPtr GetState() const override { return script::ValueToObject(IsCurrent()); }
    void DrawComp() override {
        const rendering::ScopedColor kept;
        rendering::Renderer::Instance().MultColor(IsCurrent() ? CURRENT_COLOR : OTHER_COLOR);
        Button::DrawComp();
    }

  private:
    bool IsCurrent() const { return gui::GUI::Instance().GetScale() == m_scale; }

    const float m_scale;
};

// Buttons, no slider: the slider would run away from under the mouse.
ComponentPtr MakeScaleRow() {
    const gui::LabelPtr label = new gui::Label(Translate("InterfaceSize"));
    label->SetKey("InterfaceSize");
    std::vector<ComponentPtr> row{label};
    for (const float scale : SCALES) row.push_back(new ScaleButton(scale));
    return MakeRow(row);
}

ComponentPtr MakeDPIRow(const script::AttribPtr<float>& dpi) {
    const gui::SliderPtr slider = new gui::AttribSlider(MIN_DPI, MAX_DPI, dpi);
    const ComponentPtr row = MakeSliderRow("ScreenDPI", slider, {0, " dpi"});
    row->SetToolTip(Translate("TipScreenDPI"));
    return row;
}

// Rows that are scrolled in a small view.
gui::WindowPtr MakeListWindow(const char* titleKey, const std::vector<ComponentPtr>& rows, const Desk& desk) {
    const gui::WindowPtr window = MakeRowWindow(titleKey);
    const ComponentPtr list = new gui::Component("Rows", MakeRowLayout());
    for (const ComponentPtr& row : rows) list->AddChild(row);
    window->AddChild(MakeScrolled(list, desk, FRAME_ROOM));
    return window;
}

}  // namespace

gui::WindowPtr MakeFileWindow(const Desk& desk) {
    std::vector<ComponentPtr> rows;
    for (const MenuRow& row : FILE_ROWS) rows.push_back(MakeCommandRow(desk, row.m_command, row.m_suffix));
    return MakeListWindow("FileTitle", rows, desk);
}

gui::WindowPtr MakeOptionsWindow(const Desk& desk) {
    const DrawSettings& drawing = desk.m_drawSettings;
    std::vector<ComponentPtr> rows = {
        MakeGravityRow(),
        MakeAirRow(),
        new SceneSettingsCheckbox(desk.m_scene.GetSettings()),
        MakeCheckRow("LeftClickMenus", desk.m_settings.m_leftClickMenus),
        MakeCheckRow("DrawInside", desk.m_settings.m_drawInside),
        MakeCheckRow("SimpleWater", drawing.m_simpleWater),
        MakeCheckRow("DrawHinges", desk.m_settings.m_drawHingesWhenRunning),
        MakeCheckRow("DrawClouds", drawing.m_drawClouds),
        MakeCheckRow("DrawBorders", drawing.m_borders),
        MakeSpeedRow(),
        MakeScaleRow(),
        MakeDPIRow(desk.m_dpi),
        MakeCommandRow(desk, "AllSettings", "..."),
        MakeCommandRow(desk, "KeysTitle", "..."),
        MakeCommandRow(desk, "ShowStats"),
    };
    if (desk.m_shaders) rows.insert(rows.begin() + SHADERS_ROW, MakeCheckRow("Shaders", desk.m_shaders));
    return MakeListWindow("OptionsTitle", rows, desk);
}

}  // namespace app
