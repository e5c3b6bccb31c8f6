#pragma once

#include <vector>

#include "app/Fwd.h"
#include "gui/Component.h"
#include "script/Attributes.h"

namespace app {

// What a newcomer may try, in the picture: at most three lines, each of which goes away for good when the
// user has done it, and a large button that starts the world. Stands at the lower edge in the middle of what
// the tools leave free of it; the lines take no mouse.
class Hints : public gui::Component {
  public:
    enum Kind { Draw, Play, Popup };

    // `done` is kept with the settings: the names of the hints that are over.
    Hints(const script::TAttribPtr<String>& done, const View& view);

    bool IsPending(Kind kind) const;
    void Finish(Kind kind);
    float GetRoom() const;  // at the lower edge of the interface that they take up, GUI units

    void Update(float dt) override;

  private:
    struct Entry {
        Kind m_kind;
        gui::ComponentPtr m_line;
        gui::LabelPtr m_text;  // in the line
    };

    bool HasDrawn() const;
    void Place();
    void WrapTexts(float width);  // of all, with the button; GUI units

    const script::TAttribPtr<String> m_done;
    const View& m_view;
    const gui::ComponentPtr m_lines;
    gui::ComponentPtr m_start;  // the button; null when the world has run
    std::vector<Entry> m_entries;
    float m_width = 0;  // that the texts have been wrapped for
};

}  // namespace app
