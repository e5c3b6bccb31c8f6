#include "app/widgets/Menu.h"

#include "rendering/Renderer.h"

namespace app {
namespace {

constexpr math::Vec4 OPEN_COLOR(0.6f, 0.6f, 0.6f, 1);

}  // namespace

Menu::Menu(const char* key, const String& icon, gui::Component& tearOffTarget, const Factory& factory)
    : MenuButton(key, icon, "..."), m_tearOffTarget(tearOffTarget), m_factory(factory) {}

Menu::~Menu() noexcept(false) {
    CloseIfAttached();
}

bool Menu::IsOpen() const {
    const gui::Window* const window = m_window.Get();
    return window != nullptr && window->GetParent() != nullptr;
}

void Menu::OnPressed() {
    if (IsOpen()) {
        m_window.Get()->Close();
    } else {
        Open();
    }
    MenuButton::OnPressed();
}

gui::Window* Menu::FindOwnWindow() const {
    gui::Component* c = GetParent();
    while (c != nullptr && !c->IsTopLevel()) c = c->GetParent();
    return dynamic_cast<gui::Window*>(c);
}

// One menu at a time hangs on a window; what has been torn off stays.
void Menu::CloseOthers() const {
    const gui::ComponentList siblings = GetParent()->GetChildren();
    for (const gui::ComponentPtr& sibling : siblings) {
        const auto* const menu = dynamic_cast<const Menu*>(sibling.Get());
        if (menu != nullptr && menu != this) menu->CloseIfAttached();
    }
}

bool Menu::IsAttached() const {
    return IsOpen() && !m_window.Get()->IsTornOff();
}

void Menu::CloseIfAttached() const {
    if (IsAttached()) m_window.Get()->Close();
}

void Menu::Open() {
    gui::Window* const own = FindOwnWindow();
    if (own == nullptr || own->GetParent() == nullptr) return;
    CloseOthers();
    const gui::WindowPtr window = m_factory();
    m_window = window.Get();
    window->AddCloseButton();
    window->SetTearOffTarget(&m_tearOffTarget);
    own->GetParent()->AddChild(window);
    Place(*own, *window);
    if (HasFocus()) window->TakeFocus();
}

// At the side where there is room for it.
void Menu::Place(const gui::Window& own, gui::Window& window) {
    m_ownPlace = own.GetPos();
    const float row = own.ToContent(ToGUI({0, 0})).y - GetContentOffset().y;
    math::Vec2 place(own.GetPos().x + own.GetOuterSize().x, own.GetPos().y + row);
    const math::Vec2 room = window.GetParent()->GetSize() - window.GetOuterSize();
    if (place.x > room.x) place.x = own.GetPos().x - window.GetOuterSize().x;
    if (place.y > room.y) place.y = room.y;
    place = window.GetNearestInView(place);
    window.SetPos(place.x, place.y);
    window.StopWobble();
}

// What hangs on a window goes along with it.
void Menu::Update(float dt) {
    MenuButton::Update(dt);
    const gui::Window* const own = FindOwnWindow();
    if (own != nullptr && IsAttached() && own->GetPos() != m_ownPlace) Place(*own, *m_window.Get());
}

void Menu::DrawComp() {
    if (IsOpen()) rendering::Renderer::Instance().MultColor(OPEN_COLOR);
    MenuButton::DrawComp();
}

}  // namespace app
