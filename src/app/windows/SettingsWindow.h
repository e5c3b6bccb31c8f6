#pragma once

#include <vector>

#include "app/windows/Desk.h"
#include "gui/Window.h"
#include "script/Attributes.h"

namespace app {

// Every attribute that there is, by the object that it belongs to, with its value, its default and the way
// back to that. Found by walking the script tree: a new attribute is here by itself.
class SettingsWindow : public gui::Window {
  public:
    explicit SettingsWindow(const Desk& desk);
    ~SettingsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    gui::ComponentPtr MakeObjectList();
    void ShowObject(const String& path);
    void Fill();

    const bool m_isNarrow;  // for a view that has no room for the list of objects and the defaults
    const gui::TextFieldPtr m_search;
    const gui::ComponentPtr m_rows;
    gui::ScrollAreaPtr m_scroll;
    String m_object;        // whose attributes are shown while nothing is searched for
    String m_shownSearch;   // what the rows are the answer to
    bool m_isStale = true;  // the rows are to be made at the next update
};

// An attribute with its place in the script tree.
struct Setting {
    String m_object;  // path of the owner, "App.Background"
    String m_name;
    script::AbstractAttribPtr m_attrib;
};

// All of them, in the order of the tree.
std::vector<Setting> FindSettings();

}  // namespace app
