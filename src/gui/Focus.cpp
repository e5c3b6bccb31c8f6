#include "gui/Focus.h"

#include <algorithm>

#include "gui/Component.h"
#include "input/Key.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"

namespace gui {
namespace {

constexpr math::Vec4 RING_COLOR(1, 0.85f, 0.3f, 1);
constexpr float RING_WIDTH = 2;  // GUI units

ComponentWeakPtr& Current() {
    static ComponentWeakPtr& current = *new ComponentWeakPtr;  // abandoned at exit
    return current;
}

// In the order of reading; of windows that lie over each other the front one first.
void Collect(Component& component, std::vector<Component*>& found) {
    if (component.CanFocus()) found.push_back(&component);
    const ComponentList& children = component.GetChildren();
    const bool areWindows = std::any_of(children.begin(), children.end(),
                                        [](const ComponentPtr& child) { return child->IsTopLevel(); });
    if (areWindows) {
        for (auto child = children.rbegin(); child != children.rend(); ++child) Collect(**child, found);
    } else {
        for (const ComponentPtr& child : children) Collect(*child, found);
    }
}

}  // namespace

Component* Focus::Get() {
    return Current().Get();
}

void Focus::Set(const ComponentWeakPtr& next) {
    const util::LockPtr<Component> old = Current().Lock(), now = next.Lock();
    if (old.Get() == now.Get()) return;
    Current() = next;
    if (old) old->OnFocus(false);
    if (now) now->OnFocus(true);
}

void Focus::Move(Component& root, bool backward) {
    std::vector<Component*> all;
    Collect(root, all);
    if (all.empty()) return;
    const auto place = std::find(all.begin(), all.end(), Get());
    const size_t count = all.size();
    size_t next = backward ? count - 1 : 0;
    if (place != all.end()) next = (place - all.begin() + (backward ? count - 1 : 1)) % count;
    Set(all[next]);
}

void Focus::HandleKey(Component& root, KeyEvent& event) {
    if (!event.m_pressed) return;
    const Component* const focused = Get();
    if (focused != nullptr && !focused->IsInside(root)) Set(nullptr);  // its window has been closed
    if (event.m_key == Key::LeftMouse) {
        if (focused != nullptr && !focused->IsHit(event.m_position)) Set(nullptr);
        return;
    }
    if (event.m_handled) return;
    if (event.m_key == Key::Tab && !event.m_ctrl && !event.m_alt) {
        Move(root, event.m_shift);
        event.m_handled = true;
    } else if (event.m_key == Key::Escape && Get() != nullptr) {
        Set(nullptr);
        event.m_handled = true;
    }
}

void Focus::DrawRing(const Component& component) {
    if (!component.HasFocus()) return;
    const math::BoundingBox2f box = component.GetOuterBox();
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const rendering::ScopedColor ring(RING_COLOR);
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    const math::Vec2 a = box.min, b = box.max;
    renderer.DrawQuad(a, {b.x, a.y + RING_WIDTH});
    renderer.DrawQuad({a.x, b.y - RING_WIDTH}, b);
    renderer.DrawQuad({a.x, a.y + RING_WIDTH}, {a.x + RING_WIDTH, b.y - RING_WIDTH});
    renderer.DrawQuad({b.x - RING_WIDTH, a.y + RING_WIDTH}, {b.x, b.y - RING_WIDTH});
}

}  // namespace gui
