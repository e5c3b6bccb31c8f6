#include "AppGUIFixture.h"

#include <SDL.h>

#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/scene/AppGUISettings.h"
#include "gui/Window.h"
#include "gui/components/Button.h"
#include "input/Input.h"
#include "input/Key.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"

namespace test {

using math::Vec2;

namespace {

constexpr float SCALE = 100;  // GUI units per metre

// Made once for the whole program: the services allow no second one.
app::App& MakeApp() {
    physics::Simulation::Instance();
    app::App& app = app::App::Instance();
    app.SetSize(1024, 768);
    return app;
}

const std::pair<int, int> MODIFIERS[] = {
    {gui::Key::LeftShift, KMOD_LSHIFT}, {gui::Key::LeftCtrl, KMOD_LCTRL}, {gui::Key::LeftAlt, KMOD_LALT}};

}  // namespace

void MoveMouse(Vec2 gui) {
    const Vec2 pixels = gui * gui::Input::Instance().GetSettings().m_scale;
    gui::Input::Instance().FinishPump(
        {static_cast<int>(std::lround(pixels.x)), static_cast<int>(std::lround(pixels.y))});
}

Vec2 AppGUIFixture::s_dragStart;
Vec2 AppGUIFixture::s_dragLast;
int AppGUIFixture::s_dragButton;

AppGUIFixture::AppGUIFixture() {
    app::App& app = MakeApp();
    app.Clear();
    app.GetGUISettings().m_windows->Set("Tools closed - - Control closed - -");
    app.CreateGUI();
    math::TMatrix3<float> view;
    view.m[0][0] = SCALE;
    view.m[1][1] = -SCALE;
    view.m[0][2] = 512;
    view.m[1][2] = 384;
    app.SetWorldToGUI(view, false);
    app::Undoer::Instance().Clear();
}

AppGUIFixture::~AppGUIFixture() {
    GUI().CancelTool();
    for (const auto& [key, mask] : MODIFIERS) SetModifier(key, false);
    App().Clear();
    physics::Simulation::Instance().Clear();
}

app::App& AppGUIFixture::App() {
    return app::App::Instance();
}
app::AppGUI& AppGUIFixture::GUI() {
    return *App().GetAppGUI();
}
app::Scene& AppGUIFixture::Scene() {
    return App().GetScene();
}
app::View& AppGUIFixture::View() {
    return App().GetView();
}
const app::EntityList& AppGUIFixture::Entities() {
    return App().GetEntities();
}

size_t AppGUIFixture::UndoCount() {
    return app::Undoer::Instance().GetUndoCount();
}

String AppGUIFixture::UndoName() {
    const char* const name = app::Undoer::Instance().GetUndoName();
    return name ? name : "";
}

app::EntityPtr AppGUIFixture::AddBox(Vec2 center, float side) {
    const float h = side / 2;
    const app::EntityPtr entity =
        new app::PolyEntity(physics::MakeBoxPolygon(center.x - h, center.y - h, center.x + h, center.y + h));
    App().AddEntity(entity);
    return entity;
}

app::EntityPtr AppGUIFixture::AddCircle(Vec2 center, float radius) {
    const app::EntityPtr entity = new app::CircleEntity(new physics::Circle(radius, center));
    App().AddEntity(entity);
    return entity;
}

app::EntityPtr AppGUIFixture::AddPlane(float height) {
    const app::EntityPtr entity = new app::PlaneEntity(new physics::Plane({0, 1}, -height));
    App().AddEntity(entity);
    return entity;
}

Vec2 AppGUIFixture::PlaceOf(const app::EntityPtr& entity) {
    return util::DynamicCast<app::GeomEntity>(entity)->GetGeom()->GetPos();
}

physics::BodyPtr AppGUIFixture::BodyOf(const app::EntityPtr& entity) {
    const auto shape = util::DynamicCast<app::GeomEntity>(entity);
    shape->UpdateBodyPtr();
    return shape->GetBody();
}

gui::DragEvent AppGUIFixture::MakeDrag(Vec2 world) {
    gui::DragEvent event;
    event.m_position = App().WorldToGUI(world);
    event.m_start = s_dragStart;
    event.m_delta = event.m_position - s_dragLast;
    event.m_key = s_dragButton;
    s_dragLast = event.m_position;
    return event;
}

bool AppGUIFixture::Press(Vec2 world, int button) {
    s_dragStart = s_dragLast = App().WorldToGUI(world);
    s_dragButton = button;
    gui::DragEvent event = MakeDrag(world);
    GUI().OnDragStart(event);
    return event.m_handled;
}

bool AppGUIFixture::DragTo(Vec2 world) {
    gui::DragEvent event = MakeDrag(world);
    GUI().OnDrag(event);
    return event.m_handled;
}

bool AppGUIFixture::Release() {
    gui::DragEvent event = MakeDrag(App().GUIToWorld(s_dragLast));
    event.m_delta = Vec2();
    GUI().OnDragEnd(event);
    return event.m_handled;
}

void AppGUIFixture::Drag(const math::Vec2List& path, int button) {
    Press(path.front(), button);
    for (const Vec2 p : path) DragTo(p);
    Release();
}

bool AppGUIFixture::Click(Vec2 world, int button, int clicks) {
    gui::ClickEvent event;
    event.m_position = App().WorldToGUI(world);
    event.m_key = button;
    event.m_clicks = clicks;
    GUI().OnClick(event);
    return event.m_handled;
}

bool AppGUIFixture::Key(int key, bool ctrl, Vec2 mouse) {
    gui::KeyEvent event;
    event.m_key = key;
    event.m_pressed = true;
    event.m_ctrl = ctrl;
    event.m_position = App().WorldToGUI(mouse);
    GUI().OnKeyEvent(event);
    gui::KeyEvent release = event;
    release.m_pressed = release.m_handled = false;
    GUI().OnKeyEvent(release);
    return event.m_handled;
}

void AppGUIFixture::SetModifier(int key, bool down) {
    SDL_Event event = {};
    event.type = static_cast<Uint8>(down ? SDL_KEYDOWN : SDL_KEYUP);
    event.key.keysym.sym = static_cast<SDLKey>(key);
    for (const auto& [code, mask] : MODIFIERS) {
        if (code == key && down) event.key.keysym.mod = static_cast<SDLMod>(mask);
    }
    gui::Input::Instance().HandleEvent(event);
}

namespace {

gui::ComponentPtr FindBelow(const gui::Component& parent, const String& key) {
    const gui::ComponentList& children = parent.GetChildren();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if ((*child)->GetKey() == key && !(*child)->IsTopLevel()) return *child;
        if (const gui::ComponentPtr found = FindBelow(**child, key)) return found;
    }
    return nullptr;
}

}  // namespace

gui::ComponentPtr AppGUIFixture::FindWidget(const String& key) {
    return FindBelow(App(), key);
}

void AppGUIFixture::PressButton(const String& key) {
    const auto button = util::DynamicCast<gui::AbstractButton>(FindWidget(key));
    ASSERT_TRUE(button) << "no button " << key;
    button->OnPressed();
}

std::vector<gui::Window*> AppGUIFixture::GetOpenWindows() {
    std::vector<gui::Window*> windows;
    for (const gui::Component* parent :
         {static_cast<gui::Component*>(&App()), static_cast<gui::Component*>(&GUI())}) {
        for (const gui::ComponentPtr& child : parent->GetChildren()) {
            if (auto* const window = dynamic_cast<gui::Window*>(child.Get())) windows.push_back(window);
        }
    }
    return windows;
}

math::Vec2List AppGUIFixture::Circle(Vec2 center, float radius, float turns) {
    constexpr int STEPS = 48;
    math::Vec2List points;
    for (int i = 0; i <= STEPS; ++i) {
        const float angle = math::TWO_PI * turns * i / STEPS;
        points.push_back(center + Vec2(std::cos(angle), std::sin(angle)) * radius);
    }
    return points;
}

}  // namespace test
