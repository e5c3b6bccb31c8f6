#pragma once

#include <functional>
#include <vector>

#include "gui/Window.h"
#include "script/Attributes.h"

namespace app {

// The windows of the interface that stay: which of them are open, and where the user has put them, over
// restarts and rebuilding. Each stands at a place of its own until the user moves it, and is made anew when
// it is opened.
//
// All this is kept as text in an attribute: for each window its name, "open" or "closed", and its place in
// GUI units or "- -".
class WindowSet {
  public:
    using Factory = std::function<gui::WindowPtr()>;
    // Where a window stands that nobody has moved. Those beside the tools stand in a row, below the control
    // window.
    enum class Dock { TopLeft, TopMiddle, BesideTools, TopRight, Middle };

    // The windows become children of `parent`.
    WindowSet(gui::Component& parent, const script::TAttribPtr<String>& state);

    void Add(const char* name, Dock dock, bool isOpenAtFirst, const Factory& factory);
    void Restore();  // opens what was open; once, when all have been added

    void Open(const String& name);
    void Close(const String& name);
    void Toggle(const String& name);
    bool IsOpen(const String& name) const;
    bool IsDocked(const String& name) const;     // open, and where it stands by itself
    gui::Window* Get(const String& name) const;  // null while it is closed
    std::vector<String> GetNames() const;

    void Update();  // once a frame: puts windows into their places and notes what the user did

  private:
    struct Entry {
        const char* m_name;
        Dock m_dock;
        Factory m_factory;
        bool m_isOpen;
        bool m_hasPlace;  // the user moved it
        math::Vec2 m_place;
        util::WeakPtr<gui::Window> m_window;
    };

    Entry* Find(const String& name);
    const Entry* Find(const String& name) const;
    void OpenEntry(Entry& entry);
    void Follow(Entry& entry);
    void Place(Entry& entry, float& besideTools);
    math::Vec2 GetDockPlace(const Entry& entry, const gui::Window& window, float& besideTools) const;
    float GetBottomOf(Dock dock) const;
    void Read(const String& text);
    String Write() const;

    gui::Component& m_parent;
    const script::TAttribPtr<String> m_state;
    std::vector<Entry> m_entries;
};

// In the middle of the parent, as far as there is room.
void PlaceInMiddle(gui::Window& window, const gui::Component& parent);

}  // namespace app
