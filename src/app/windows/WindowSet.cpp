#include "app/windows/WindowSet.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "gui/Focus.h"

namespace app {
namespace {

using gui::Window;
using math::Vec2;

constexpr float TITLE_HEIGHT = 28;  // GUI units, of a window's title bar
constexpr float MARGIN = 8;         // GUI units, to the edges of the screen and between docked windows

Vec2 OnWholeUnits(Vec2 place) {
    return {std::floor(place.x), std::floor(place.y)};
}

Vec2 GetMiddlePlace(const Window& window, const gui::Component& parent) {
    const Vec2 place = (parent.GetSize() - window.GetOuterSize()) * 0.5f;
    return OnWholeUnits({std::max(place.x, 0.0f), std::max(place.y, 0.0f)});
}

void PutAt(Window& window, Vec2 place) {
    if (place == window.GetPos()) return;
    window.SetPos(place.x, place.y);
    window.StopWobble();
}

}  // namespace

void PlaceInMiddle(Window& window, const gui::Component& parent) {
    PutAt(window, GetMiddlePlace(window, parent));
}

WindowSet::WindowSet(gui::Component& parent, const script::TAttribPtr<String>& state)
    : m_parent(parent), m_state(state) {}

void WindowSet::Add(const char* name, Dock dock, bool isOpenAtFirst, const Factory& factory) {
    m_entries.push_back({name, dock, factory, isOpenAtFirst, false, {}, {}});
}

void WindowSet::Restore() {
    Read(m_state->Get());
    for (Entry& entry : m_entries) {
        if (entry.m_isOpen) OpenEntry(entry);
    }
}

// ---- open and closed

WindowSet::Entry* WindowSet::Find(const String& name) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return name == entry.m_name; });
    return found == m_entries.end() ? nullptr : &*found;
}

const WindowSet::Entry* WindowSet::Find(const String& name) const {
    return const_cast<WindowSet*>(this)->Find(name);
}

gui::Window* WindowSet::Get(const String& name) const {
    const Entry* const entry = Find(name);
    Window* const window = entry == nullptr ? nullptr : entry->m_window.Get();
    return window != nullptr && window->GetParent() != nullptr ? window : nullptr;
}

bool WindowSet::IsOpen(const String& name) const {
    return Get(name) != nullptr;
}

bool WindowSet::IsDocked(const String& name) const {
    return IsOpen(name) && !Find(name)->m_hasPlace;
}

std::vector<String> WindowSet::GetNames() const {
    std::vector<String> names;
    for (const Entry& entry : m_entries) names.push_back(entry.m_name);
    return names;
}

void WindowSet::Open(const String& name) {
    Entry* const entry = Find(name);
    if (entry == nullptr) return;
    if (Window* const window = Get(name)) {
        m_parent.AddChild(window);  // to the front
    } else {
        OpenEntry(*entry);
    }
}

void WindowSet::OpenEntry(Entry& entry) {
    const gui::WindowPtr window = entry.m_factory();
    window->SetReflectedName(entry.m_name);
    window->AddCloseButton();
    entry.m_window = window.Get();
    entry.m_isOpen = true;
    m_parent.AddChild(window);
    Update();
}

void WindowSet::Close(const String& name) {
    if (Window* const window = Get(name)) window->Close();
}

void WindowSet::Toggle(const String& name) {
    if (IsOpen(name)) {
        Close(name);
    } else {
        Open(name);
        if (gui::Focus::Get() != nullptr) Get(name)->TakeFocus();
    }
}

// ---- places

void WindowSet::Update() {
    if (m_parent.GetSize() == Vec2()) return;
    float besideTools = MARGIN;
    for (Entry& entry : m_entries) {
        Follow(entry);
        if (Get(entry.m_name) != nullptr) Place(entry, besideTools);
    }
    const String text = Write();
    if (text != m_state->Get()) m_state->Set(text);
}

void WindowSet::Follow(Entry& entry) {
    const Window* const window = Get(entry.m_name);
    entry.m_isOpen = window != nullptr;
    if (window == nullptr || !window->IsDragged()) return;
    entry.m_hasPlace = true;
    entry.m_place = OnWholeUnits(window->GetPos());
}

// A window that the user has moved stays where it is, but for its parent's keeping it in view.
void WindowSet::Place(Entry& entry, float& besideTools) {
    Window& window = *entry.m_window.Get();
    if (window.IsDragged()) return;
    PutAt(window, entry.m_hasPlace ? window.GetNearestInView(entry.m_place)
                                   : GetDockPlace(entry, window, besideTools));
}

float WindowSet::GetBottomOf(Dock dock) const {
    for (const Entry& entry : m_entries) {
        const Window* const window = Get(entry.m_name);
        if (entry.m_dock != dock || window == nullptr || entry.m_hasPlace) continue;
        return window->GetPos().y + window->GetOuterSize().y;
    }
    return 0;
}

Vec2 WindowSet::GetDockPlace(const Entry& entry, const Window& window, float& besideTools) const {
    const Vec2 room = m_parent.GetSize() - window.GetOuterSize();
    switch (entry.m_dock) {
        case Dock::TopLeft:
            besideTools += window.GetOuterSize().x + MARGIN;
            return {MARGIN, MARGIN};
        case Dock::TopMiddle:
            return OnWholeUnits({std::max(room.x / 2, 0.0f), MARGIN});
        case Dock::TopRight:
            return {std::max(room.x - MARGIN, 0.0f), MARGIN};
        case Dock::BesideTools: {
            Vec2 place(besideTools, GetBottomOf(Dock::TopMiddle) + MARGIN);
            besideTools += window.GetOuterSize().x + MARGIN;
            if (place.x > room.x) place.y += TITLE_HEIGHT;  // it covers its neighbour, but not its title
            return {std::clamp(place.x, 0.0f, std::max(room.x, 0.0f)),
                    std::clamp(place.y, 0.0f, std::max(room.y, 0.0f))};
        }
        case Dock::Middle:
            break;
    }
    return GetMiddlePlace(window, m_parent);
}

// ---- text

// What cannot be read leaves the window as it is at first.
void WindowSet::Read(const String& text) {
    std::istringstream in(text);
    String name, state, x, y;
    while (in >> name >> state >> x >> y) {
        Entry* const entry = Find(name);
        if (entry == nullptr) continue;
        entry->m_isOpen = state == "open";
        std::istringstream place(x + " " + y);
        entry->m_hasPlace = static_cast<bool>(place >> entry->m_place.x >> entry->m_place.y);
    }
}

String WindowSet::Write() const {
    std::ostringstream out;
    for (const Entry& entry : m_entries) {
        out << (out.tellp() > 0 ? " " : "") << entry.m_name << (entry.m_isOpen ? " open " : " closed ");
        if (entry.m_hasPlace) {
            out << entry.m_place.x << ' ' << entry.m_place.y;
        } else {
            out << "- -";
        }
    }
    return out.str();
}

}  // namespace app
