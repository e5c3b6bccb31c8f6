#include "gui/WidgetList.h"

#include <cstring>

#include "gui/Focus.h"
#include "gui/Window.h"
#include "gui/components/ScrollArea.h"
#include "input/Input.h"
#include "input/Key.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"

namespace gui {
namespace {

using math::BoundingBox2f;
using math::Vec2;
using script::ObjectPtr;

const char* const PLAIN_KIND = "Component";

// Calls `visit` for the visible components, topmost first, until it answers true.
template <class Visit>
bool Walk(Component& component, const BoundingBox2f& clip, const Visit& visit) {
    if (!component.IsVisible()) return false;
    const BoundingBox2f box = GetBoxInView(component);
    const bool clips = dynamic_cast<ScrollArea*>(&component) != nullptr;
    const ComponentList children = component.GetChildren();
    for (size_t i = children.size(); i-- > 0;) {
        if (Walk(*children[i], clips ? box : clip, visit)) return true;
    }
    return box.Overlaps(clip) && visit(component, box);
}

BoundingBox2f GetEverything() {
    constexpr float INF = std::numeric_limits<float>::infinity();
    return {{-INF, -INF}, {INF, INF}};
}

ObjectPtr Describe(const Component& component, const BoundingBox2f& box, float scale) {
    const ObjectPtr state = component.GetState();
    script::ObjectList row = {
        script::ValueToObject(component.GetKind()),      script::ValueToObject(component.GetKey()),
        script::ValueToObject(component.GetShownText()), script::ValueToObject(box.min * scale),
        script::ValueToObject(box.GetSize() * scale),    state ? state : script::ValueToObject("")};
    return script::ValueToObject(row);
}

Component* Find(Component& root, const String& key) {
    Component* found = nullptr;
    Walk(root, GetEverything(), [&](Component& component, const BoundingBox2f&) {
        if (component.GetKey() == key) found = &component;
        return found != nullptr;
    });
    return found;
}

// What is scrolled out of view is found here and by the walk above only once it is in view.
ScrollArea* GetScrollArea(const Component& component) {
    for (Component* c = component.GetParent(); c != nullptr; c = c->GetParent()) {
        if (auto* const area = dynamic_cast<ScrollArea*>(c)) return area;
    }
    return nullptr;
}

Component* FindAnywhere(Component& component, const String& key) {
    if (!component.IsVisible()) return nullptr;
    const ComponentList& children = component.GetChildren();
    for (size_t i = children.size(); i-- > 0;) {
        if (Component* const found = FindAnywhere(*children[i], key)) return found;
    }
    return component.GetKey() == key ? &component : nullptr;
}

void BringIntoView(Component& component) {
    for (Component* c = &component; c != nullptr; c = c->GetParent()) {
        if (auto* const window = dynamic_cast<Window*>(c)) window->Raise();
    }
    if (ScrollArea* const area = GetScrollArea(component)) area->ScrollTo(component);
}

void Click(Vec2 gui) {
    Input& input = Input::Instance();
    KeyEvent event;
    event.m_key = Key::LeftMouse;
    event.m_position = gui;
    for (const bool pressed : {true, false}) {
        event.m_handled = false;
        event.m_pressed = pressed;
        input.OnKeyEvent(event);
    }
}

}  // namespace

ObjectPtr ListWidgets(Component& root, float scale) {
    script::ObjectList rows;
    Walk(root, GetEverything(), [&](const Component& component, const BoundingBox2f& box) {
        if (std::strcmp(component.GetKind(), PLAIN_KIND) != 0)
            rows.push_back(Describe(component, box, scale));
        return false;
    });
    return script::ValueToObject(rows);
}

ObjectPtr DescribeFocus(float scale) {
    const Component* const focused = Focus::Get();
    if (focused == nullptr) return script::ValueToObject(script::ObjectList());
    return Describe(*focused, GetBoxInView(*focused), scale);
}

void PressWidget(Component& root, const String& key) {
    Component* found = Find(root, key);
    if (found == nullptr) found = FindAnywhere(root, key);
    if (key.empty() || found == nullptr)
        THROW(script::ScriptException, "No control has the key \"" + key + "\"");
    const util::LockPtr<Component> control(found);
    BringIntoView(*control);
    const Vec2 place = control->ToGUI(control->GetSize() * 0.5f);
    const Component* const top = root.FindAt(place);
    if (top == nullptr || !top->IsInside(*control)) {
        THROW(script::ScriptException, "The control \"" + key + "\" is covered by another");
    }
    Click(place);
}

}  // namespace gui
