#pragma once

#include "gui/Component.h"

namespace gui {

// A window on a content that may be higher than it: the wheel, the bar at the right, page up and page down
// move it. As wide as the content with the bar, as high as the content but at most `maxHeight`, or as the
// whole interface leaves room for.
class ScrollArea : public Component {
  public:
    ScrollArea(const ComponentPtr& content, float maxHeight, const String& name = "ScrollArea");

    void SetMaxHeight(float maxHeight);  // GUI units
    // From now on the greatest height is that of the interface, whatever becomes of it, less `room`.
    void FollowView(float room) { m_room = room; }
    float GetOffset() const { return m_offset; }  // GUI units of the content above the upper edge
    void ScrollTo(float offset);
    // So that the component, somewhere below the content, is in view.
    void ScrollTo(const Component& component);

    void DoLayout() override;
    void Update(float dt) override;
    void DrawComp() override;
    void DrawChildren() override;
    void OnKeyEvent(KeyEvent& event) override;
    void OnMouseMove(MouseMoveEvent& event) override;
    void EndGesture() override;
    Component* FindAt(math::Vec2 place) override;
    bool TakesMouse() const override { return true; }
    bool CanFocus() const override;  // for the arrows, where nothing inside could lead them
    const char* GetKind() const override { return "ScrollArea"; }

  private:
    bool CanScroll() const { return GetMaxOffset() > 0; }
    float GetMaxOffset() const;
    math::BoundingBox2f GetKnob() const;  // content coordinates
    bool HandlePress(const KeyEvent& event);
    void DrawBar() const;

    const ComponentPtr m_content;  // a child
    float m_maxHeight;             // GUI units
    float m_room = 0;              // GUI units that are left free of the interface's height; 0 for any height
    float m_offset = 0;
    bool m_dragging = false;       // the bar
    ComponentWeakPtr m_lastFocus;  // brought into view already
};

}  // namespace gui
