#include "gui/Focus.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

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
    if (!component.IsVisible()) return;
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

std::vector<Component*> CollectLike(Component& root, const String& kind, const String& key) {
    std::vector<Component*> all, alike;
    Collect(root, all);
    std::copy_if(all.begin(), all.end(), std::back_inserter(alike), [&](const Component* component) {
        return component->GetKind() == kind && component->GetKey() == key;
    });
    return alike;
}

// An interval along one axis, GUI units.
struct Span {
    float m_begin;
    float m_end;
};

// How far `there` lies from `here` in the direction of the arrow, what lies beside that way counting more;
// infinite for what lies elsewhere.
float GetStepLength(const math::BoundingBox2f& here, const math::BoundingBox2f& there, int arrow) {
    constexpr float SIDE_WEIGHT = 4;
    const bool isVertical = arrow == Key::Up || arrow == Key::Down;
    const Span xs[] = {{here.min.x, here.max.x}, {there.min.x, there.max.x}};
    const Span ys[] = {{here.min.y, here.max.y}, {there.min.y, there.max.y}};
    const Span(&along)[2] = isVertical ? ys : xs;
    const Span(&across)[2] = isVertical ? xs : ys;
    const bool isForward = arrow == Key::Down || arrow == Key::Right;
    const float middle = (along[1].m_begin + along[1].m_end) / 2;
    if (isForward ? middle <= along[0].m_end : middle >= along[0].m_begin)
        return std::numeric_limits<float>::infinity();
    const float gap = isForward ? along[1].m_begin - along[0].m_end : along[0].m_begin - along[1].m_end;
    const float side =
        std::max({across[1].m_begin - across[0].m_end, across[0].m_begin - across[1].m_end, 0.0f});
    return std::max(gap, 0.0f) + SIDE_WEIGHT * side + std::fabs(across[0].m_begin - across[1].m_begin);
}

}  // namespace

math::BoundingBox2f GetBoxInView(const Component& component) {
    const math::BoundingBox2f box = component.GetOuterBox();
    math::BoundingBox2f result;
    result.Extend(component.ToGUI(box.min));
    result.Extend(component.ToGUI(box.max));
    return result;
}

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

bool Focus::Step(Component& root, int arrow) {
    const Component* const from = Get();
    if (from == nullptr) return false;
    std::vector<Component*> all;
    Collect(root, all);
    const math::BoundingBox2f here = GetBoxInView(*from);
    float shortest = std::numeric_limits<float>::infinity();
    Component* nearest = nullptr;
    for (Component* const candidate : all) {
        const float length = GetStepLength(here, GetBoxInView(*candidate), arrow);
        if (candidate == from || !(length < shortest)) continue;
        shortest = length;
        nearest = candidate;
    }
    if (nearest != nullptr) Set(nearest);
    return nearest != nullptr;
}

bool Focus::CanMoveInto(Component& root) {
    std::vector<Component*> all;
    Collect(root, all);
    return !all.empty();
}

Focus::Place Focus::GetPlace(Component& root) {
    Component* const focused = Get();
    if (focused == nullptr || !focused->IsInside(root)) return {};
    const String kind = focused->GetKind(), key = focused->GetKey();
    const std::vector<Component*> alike = CollectLike(root, kind, key);
    return {kind, key, static_cast<size_t>(std::find(alike.begin(), alike.end(), focused) - alike.begin())};
}

void Focus::SetPlace(Component& root, const Place& place) {
    const std::vector<Component*> alike = CollectLike(root, place.m_kind, place.m_key);
    if (place.m_index < alike.size()) Set(alike[place.m_index]);
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
