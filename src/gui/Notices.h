#pragma once

#include <deque>

#include "gui/Component.h"

namespace gui {

// Warnings and errors at the window's lower edge for some seconds, for a user who does not watch the console.
class Notices : public Component {
  public:
    Notices();

    // A line of the log; only warnings and errors are shown, without their prefix.
    void Add(const String& line);

    // What lies at the lower edge is not to be covered: so high it is, GUI units.
    void KeepAbove(float height) { m_floor = height; }

    void Update(float dt) override;
    void DrawComp() override;
    bool IsVisible() const override { return !m_notices.empty(); }
    const char* GetKind() const override { return "Notices"; }
    String GetShownText() const override;

  private:
    struct Notice {
        FormattedText text;
        math::Vec4 color;
        double end;  // seconds
    };
    void DrawNotice(const Notice& notice, float bottom) const;

    std::deque<Notice> m_notices;  // oldest first
    float m_floor = 0;             // GUI units above the lower edge
};
using NoticesPtr = util::SharedPtr<Notices>;

}  // namespace gui
