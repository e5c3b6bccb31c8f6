#pragma once

#include "gui/WobbleComponent.h"

namespace gui {

// A framed component with a title bar, by which the user drags it. Raised by a press anywhere in it. No
// press, click or drag falls through it to what lies below; the wheel does. Its title bar stays in its
// parent's view, whatever moves it and whatever becomes of the parent's size.
//
// With a tear-off target the first drag takes it out of its parent: the window becomes a child of the
// target, at the same place on screen.
class Window : public WobbleComponent {
  public:
    // Without a close button; see AddCloseButton.
    explicit Window(const String& title, const LayoutPtr& layout = nullptr);
    ~Window() noexcept(false) override;

    void SetSize(float w, float h) override;  // at least as wide as the title bar needs
    void OnGeometryChanged() override;
    void FitToParent() override;
    void DrawComp() override;
    void OnKeyEvent(KeyEvent& event) override;
    void OnMouseMove(MouseMoveEvent& event) override;
    void OnDragStart(DragEvent& event) override;
    void OnClick(ClickEvent& event) override;
    void EndGesture() override;
    bool TakesMouse() const override { return true; }
    bool IsTopLevel() const override { return true; }
    const char* GetKind() const override { return "Window"; }
    String GetShownText() const override { return m_title; }

    const String& GetTitle() const { return m_title; }
    void SetTitle(const String& title);

    // A press on it removes the window from its parent. Once only.
    void AddCloseButton();
    const ButtonPtr& GetCloseButton() const { return m_closeButton; }  // may be null

    // The arrows move the focus among the window's controls. Escape closes it while one of them has the
    // focus, if it is a dialog or the focus came by TakeFocus; otherwise escape only leaves it.
    void SetClosesAtEscape(bool closes) { m_closesAtEscape = closes; }
    virtual void TakeFocus();  // until the window is closed, when it goes back to where it was

    void Raise();  // over its siblings

    // Takes the window from its parent; it dies unless somebody else holds it.
    void Close();

    util::CallbackSet& GetMovedCallbacks() { return m_movedCallbacks; }  // after each step of a drag
    // The first drag tears the window off: it becomes a child of the target, where it stays in its place.
    void SetTearOffTarget(const ComponentWeakPtr& target) { m_tearOffTarget = target; }
    void TearOff();
    bool IsTornOff() const { return m_tornOff; }
    bool IsDragged() const { return m_dragging; }
    // The place nearest to `pos` at which the title bar is in the parent's view.
    math::Vec2 GetNearestInView(math::Vec2 pos) const;

  protected:
    bool IsHeld() const override { return m_dragging; }

  private:
    float GetMinWidth() const;
    bool HandlePress(const KeyEvent& event);
    bool HandleFocusKey(const KeyEvent& event);
    bool HasFocusInside() const;
    bool IsOnTitleBar(math::Vec2 gui) const;
    bool LiesOverText() const;
    void MoveTo(Component& target);

    String m_title;
    FormattedText m_titleText;
    bool m_dragging = false;
    math::Vec2 m_dragPos;  // where the mouse would have it; beyond the view it stays behind
    bool m_closesAtEscape = false;
    ComponentWeakPtr m_focusBefore;  // TakeFocus; null for none
    ButtonPtr m_closeButton;         // a child too; may be null
    util::CallbackSet m_movedCallbacks;
    ComponentWeakPtr m_tearOffTarget;
    bool m_tornOff = false;
};

}  // namespace gui
