#pragma once

#include <limits>

#include "gui/Component.h"

namespace gui {

// A value along a track. The left button takes the knob to the mouse, the middle button to the default; with
// the focus the arrow keys move it. NaN means that there is no one value: the knob is not drawn.
class Slider : public Component {
  public:
    // Asserts min < max. The value is 0 at first, also outside of the range.
    Slider(double min, double max, const String& name = "Slider");

    virtual double GetValue() const { return m_value; }
    virtual void SetValue(double value);  // tells of a change
    virtual void SetValueSilent(double value);
    virtual void SetDefault(double value);  // where a middle click goes
    virtual void FireChange();
    virtual void FireDragStart();
    virtual void FireDragEnd();

    void SetLogarithmic(bool logarithmic);  // asserts min > 0
    // What the ends of the track give instead of min and max.
    void SetMinClamp(double value);
    void SetMaxClamp(double value);
    bool IsMinClamp(double value) const { return m_minClamps && value == m_minClampValue; }
    bool IsMaxClamp(double value) const { return m_maxClamps && value == m_maxClampValue; }

    util::CallbackSet& GetOnChange() { return m_onChange; }
    util::CallbackSet& GetOnDragStart() { return m_onDragStart; }  // before a user's change
    util::CallbackSet& GetOnDragEnd() { return m_onDragEnd; }
    bool IsDragging() const { return m_dragging || m_heldArrow != 0; }

    // Between the value and the knob's middle, content coordinates.
    float GetKnobX(double value) const;
    double GetValueAt(float x) const;

    void OnKeyEvent(KeyEvent& event) override;
    void OnMouseMove(MouseMoveEvent& event) override;
    void OnFocus(bool focused) override;
    void EndGesture() override;
    void DrawComp() override;
    bool TakesMouse() const override { return true; }
    bool CanFocus() const override { return true; }
    const char* GetKind() const override { return "Slider"; }
    script::ObjectPtr GetState() const override;  // the value; "unknown" for NaN

  private:
    bool HandlePress(const KeyEvent& event);
    bool HandleFocusKey(const KeyEvent& event);
    void EndDrag();
    void EndHeldArrow();
    void ChangeAsUser(double value);
    double GetFraction(double value) const;
    double GetValueOf(double fraction) const;
    void DrawTrack() const;
    void DrawKnob() const;

    const double m_min;
    const double m_max;
    double m_value = 0;
    bool m_minClamps = false;
    double m_minClampValue = 0;
    bool m_maxClamps = false;
    double m_maxClampValue = 0;
    bool m_logarithmic = false;
    bool m_dragging = false;
    int m_heldArrow = 0;  // the key whose press began a change that its release ends; 0 for none
    util::CallbackSet m_onChange;
    util::CallbackSet m_onDragStart;
    util::CallbackSet m_onDragEnd;
    bool m_hasDefault = false;
    double m_defaultValue = 0;
};

}  // namespace gui
