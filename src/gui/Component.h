#pragma once

#include "gui/Border.h"
#include "gui/Fwd.h"
#include "gui/Layout.h"
#include "gui/TextFormat.h"
#include "input/InputListener.h"
#include "math/BoundingBox.h"
#include "math/Matrix3.h"

namespace gui {

// A rectangle on screen with a place in its parent, a border, a colour, children and maybe a layout.
// Everything visible is one, the world view included.
//
// Coordinates, all with y down:
// - GUI: pixels of the window over the GUI's scale, from the window's top left. Input events are in these.
// - Content: of one component, from the top left of its content box. ToContent and ToGUI convert.
// - A component's position is that of its border's outer corner in its parent's content coordinates; its
//   size is that of the content box, without the border.
//
// A child is a child in three lists at once: drawn, reflected in the script object, and listening. It is
// owned by its parent and never keeps it alive. Children are drawn first to last and hear events last to
// first, so the one on top is asked first. What wants an event overrides the operation, calls the base first
// (children go first), looks at m_handled, asks IsHit whether the event's place is its own, and sets
// m_handled.
//
// What is covered: at each place the topmost component that takes the mouse (TakesMouse) covers all others
// but those that it is part of. IsHit is the one test of this for presses, clicks, drags and hovering.
//
// Works without a window: components are made and laid out before there is a GL context, and only drawing
// needs one. A component dies with its last counted pointer; it never lives on the stack or by value.
class Component : public InputDelegator {
  public:
    explicit Component(const String& name = "Component", const LayoutPtr& layout = nullptr);

    // In the colour of this component times the renderer's, itself first, then the children.
    virtual void Draw();
    virtual void DrawChildren();
    virtual void DrawComp();        // the component's own painting, in content coordinates; here the border
    virtual void Update(float dt);  // seconds; here the children, from the last to the first

    math::TMatrix3<float> GetInverseTransform() const;  // from GUI to content coordinates
    // From the parent's content coordinates.
    virtual math::TMatrix3<float> GetFromParent() const;

    virtual void SetPos(float x, float y);
    virtual void SetSize(float w, float h);

    // Follows a change of place, size or border: fits the children, then has the parent laid out. Does
    // nothing while notification is off, or when called out of itself.
    virtual void OnGeometryChanged();

    virtual void DoLayout();
    virtual void FitToParent();  // for a component that fills its parent: takes its size, drops the border

    // A child of this or another parent already moves here, to the top of its priority. Null is a failed
    // assertion.
    void AddChild(const ComponentPtr& child);
    void RemoveChild(const ComponentPtr& child);  // not being here is no failure
    void RemoveAllChildren();
    const ComponentList& GetChildren() const { return m_children; }  // in drawing order
    Component* GetParent() const { return m_parent.Get(); }          // null at the root

    math::Vec2 GetPos() const { return m_pos; }
    math::Vec2 GetSize() const { return m_size; }
    math::Vec2 GetOuterSize() const;          // with the border
    math::BoundingBox2f GetOuterBox() const;  // content coordinates
    math::Vec2 GetContentOffset() const { return {m_border.GetLeft(), m_border.GetTop()}; }

    math::Vec2 ToContent(math::Vec2 gui) const { return GetInverseTransform()(gui); }
    math::Vec2 ToGUI(math::Vec2 content) const { return Inverted(GetInverseTransform())(content); }
    bool IsInOuterBox(math::Vec2 gui) const { return GetOuterBox().Contains(ToContent(gui)); }
    bool IsInContentBox(math::Vec2 gui) const;

    // Draws something at all; for what scripts see.
    virtual bool IsVisible() const { return true; }
    // A window: one of several that lie over each other.
    virtual bool IsTopLevel() const { return false; }
    // Whether it stands in the way of what lies below it. Plain components, texts and pictures do not.
    virtual bool TakesMouse() const { return false; }
    // The topmost component that takes the mouse there, this or one inside it; null for none. `place` is in
    // the parent's content coordinates.
    virtual Component* FindAt(math::Vec2 place);
    bool IsHit(math::Vec2 gui) const;  // in the outer box and not covered; for components that take the mouse
    bool IsMouseInside() const;        // IsHit, by the mouse's present place
    bool IsInside(const Component& other) const;  // is `other` or hangs somewhere below it
    Component& GetTreeRoot() const;

    // The keyboard's focus (gui::Focus): what can have it is reached by tab.
    virtual bool CanFocus() const { return false; }
    virtual void OnFocus(bool) {}  // it has come, or gone
    bool HasFocus() const;

    // What scripts, tests and assistive tools see. The key is that of the control's text in the language
    // files, the same in all languages; empty without one.
    virtual const char* GetKind() const { return "Component"; }
    virtual String GetShownText() const { return String(); }
    virtual script::ObjectPtr GetState() const { return nullptr; }
    const String& GetKey() const { return m_key; }
    void SetKey(const String& key) { m_key = key; }
    const String& GetToolTip() const { return m_toolTip; }  // shown when the mouse rests on it
    void SetToolTip(const String& text) { m_toolTip = text; }

    // It is about to go, or the scene under it is: what the user holds in it ends here, as by a release of
    // the button beside everything. Here the children's.
    virtual void EndGesture();

    const Border& GetBorder() const { return m_border; }
    void SetBorder(const Border& border);
    const TextFormat& GetTextFormat() const { return m_textFormat; }
    virtual void SetTextFormat(const TextFormat& format) { m_textFormat = format; }
    const LayoutPtr& GetLayout() const { return m_layout; }
    const math::Vec4& GetColor() const { return m_color; }
    void SetColor(const math::Vec4& color) { m_color = color; }
    void SetFillParent(bool fillParent);
    bool IsExcludedFromLayout() const { return m_excludedFromLayout || m_fillParent; }
    void SetExcludedFromLayout(bool excluded);
    void SetAutoNotify(bool autoNotify) { m_autoNotify = autoNotify; }  // off while a layout works

  private:
    void SortChildren();
    void WatchPriority();
    void ResortInParent();

    math::Vec2 m_pos;           // GUI units
    math::Vec2 m_size;          // GUI units
    float m_z = 0.01f;          // depth of one level of the tree
    bool m_fillParent = false;  // tracks the parent's content box
    bool m_autoNotify = true;
    bool m_notifying = false;        // inside OnGeometryChanged
    bool m_watchesPriority = false;  // the callback that sorts it anew in its parent has been added
    ComponentList m_children;        // owned
    ComponentWeakPtr m_parent;
    TextFormat m_textFormat;  // from the look and feel
    Border m_border;          // empty
    LayoutPtr m_layout;       // may be null
    bool m_excludedFromLayout = false;
    math::Vec4 m_color{1, 1, 1, 1};
    String m_key;
    String m_toolTip;
};

}  // namespace gui
