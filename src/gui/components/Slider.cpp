#include "gui/components/Slider.h"

#include <algorithm>
#include <cmath>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Key.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "script/Conversions.h"
#include "util/Assert.h"
#include "util/Redraw.h"

// With the track from x = M to x = w - M, M being the margin, and the fraction t of the track
//
//   t = (v - min) / (max - min),  or (log v - log min) / (log max - log min)
//   x = t (w - M) + (1 - t) M
namespace gui {
namespace {

using math::Vec2;
using math::Vec4;

constexpr float MARGIN = 5;           // GUI units at both ends of the track
constexpr float KNOB_HALF_WIDTH = 3;  // GUI units
constexpr float KNOB_HALF_HEIGHT = 7;
constexpr float BAR_HEIGHT = 2;
constexpr float DEFAULT_WIDTH = 120;
constexpr double KEY_STEP = 0.02;        // of the track
constexpr double FINE_KEY_STEP = 0.002;  // with shift
const Vec4 HOVER_COLOR(1.2f, 1.2f, 1.2f, 1);
const Vec4 TRACK_START(0.45f, 0.5f, 0.6f, 1), TRACK_END(0.75f, 0.82f, 0.95f, 1);
const Vec4 KNOB_COLOR = (TRACK_START + TRACK_END) * 0.5f;

bool IsSame(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

}  // namespace

Slider::Slider(double min, double max, const String& name) : Component(name), m_min(min), m_max(max) {
    CODE_ASSERTION(min < max);
    SetSize(DEFAULT_WIDTH, ROW_HEIGHT);
}

// ---- the value ---------------------------------------------------------------------------------------

void Slider::SetValue(double value) {
    if (IsSame(value, GetValue())) return;
    SetValueSilent(value);
    FireChange();
}

void Slider::SetValueSilent(double value) {
    if (!IsSame(value, m_value)) util::Redraw::Request();
    m_value = value;
}

void Slider::SetDefault(double value) {
    m_defaultValue = value;
    m_hasDefault = true;
}

void Slider::FireChange() {
    m_onChange.CallAll();
}

void Slider::FireDragStart() {
    m_onDragStart.CallAll();
}

void Slider::FireDragEnd() {
    m_onDragEnd.CallAll();
}

void Slider::SetLogarithmic(bool logarithmic) {
    if (logarithmic) CODE_ASSERTION(m_min > 0);
    m_logarithmic = logarithmic;
}

void Slider::SetMinClamp(double value) {
    m_minClamps = true;
    m_minClampValue = value;
}

void Slider::SetMaxClamp(double value) {
    m_maxClamps = true;
    m_maxClampValue = value;
}

double Slider::GetFraction(double value) const {
    if (std::isnan(value)) return value;
    const double v = std::clamp(value, m_min, m_max);
    if (!m_logarithmic) return (v - m_min) / (m_max - m_min);
    return std::log10(v / m_min) / std::log10(m_max / m_min);
}

double Slider::GetValueOf(double fraction) const {
    if (fraction <= 0) return m_minClamps ? m_minClampValue : m_min;
    if (fraction >= 1) return m_maxClamps ? m_maxClampValue : m_max;
    if (!m_logarithmic) return m_min + fraction * (m_max - m_min);
    return std::pow(10, std::log10(m_min) + fraction * (std::log10(m_max) - std::log10(m_min)));
}

float Slider::GetKnobX(double value) const {
    const double t = GetFraction(value);
    return static_cast<float>(t * (GetSize().x - MARGIN) + (1 - t) * MARGIN);
}

double Slider::GetValueAt(float x) const {
    return GetValueOf((x - MARGIN) / (GetSize().x - 2 * MARGIN));
}

script::ObjectPtr Slider::GetState() const {
    const double value = GetValue();
    if (std::isnan(value)) return script::ValueToObject("unknown");
    return script::ValueToObject(value);
}

// ---- input -------------------------------------------------------------------------------------------

void Slider::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (event.m_key == Key::LeftMouse && !event.m_pressed && m_dragging) {
        EndDrag();
        event.m_handled = true;
    } else if (!event.m_pressed && event.m_key == m_heldArrow) {
        EndHeldArrow();
    } else if (event.m_pressed && !event.m_handled) {
        event.m_handled = HandlePress(event) || HandleFocusKey(event);
    }
}

bool Slider::HandlePress(const KeyEvent& event) {
    if (event.m_key != Key::LeftMouse && event.m_key != Key::MiddleMouse) return false;
    if (!IsHit(event.m_position)) return false;
    if (event.m_key == Key::LeftMouse) {
        m_dragging = true;
        FireDragStart();
        SetValue(GetValueAt(ToContent(event.m_position).x));
    } else if (m_hasDefault) {
        ChangeAsUser(m_defaultValue);
    }
    return true;
}

// A value that there is not, of several things that differ, starts at the near end. A key that is held is one
// change, as one drag is.
bool Slider::HandleFocusKey(const KeyEvent& event) {
    if (!HasFocus() || (event.m_key != Key::Left && event.m_key != Key::Right)) return false;
    if (event.m_key != m_heldArrow) {
        EndHeldArrow();
        FireDragStart();
        m_heldArrow = event.m_key;
    }
    const double t = GetFraction(GetValue()), step = event.m_shift ? FINE_KEY_STEP : KEY_STEP;
    SetValue(GetValueOf((std::isnan(t) ? 0 : t) + (event.m_key == Key::Left ? -step : step)));
    return true;
}

void Slider::EndDrag() {
    if (!m_dragging) return;
    m_dragging = false;
    FireDragEnd();
}

void Slider::EndHeldArrow() {
    if (m_heldArrow == 0) return;
    m_heldArrow = 0;
    FireDragEnd();
}

void Slider::OnFocus(bool) {
    EndHeldArrow();
}

void Slider::EndGesture() {
    EndDrag();
    EndHeldArrow();
    Component::EndGesture();
}

void Slider::ChangeAsUser(double value) {
    if (IsSame(value, GetValue())) return;
    FireDragStart();
    SetValue(value);
    FireDragEnd();
}

void Slider::OnMouseMove(MouseMoveEvent& event) {
    Component::OnMouseMove(event);
    if (event.m_handled || !m_dragging) return;
    SetValue(GetValueAt(ToContent(event.m_position).x));
    event.m_handled = true;
}

// ---- drawing -----------------------------------------------------------------------------------------

void Slider::DrawComp() {
    if (m_dragging || IsMouseInside()) rendering::Renderer::Instance().MultColor(HOVER_COLOR);
    Component::DrawComp();
    DrawTrack();
    DrawKnob();
    Focus::DrawRing(*this);
}

void Slider::DrawTrack() const {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const Vec4 present = renderer.GetColor();
    const Vec4 start = present * TRACK_START, end = present * TRACK_END;
    const Vec4 colors[4] = {start, end, end, start};
    const float left = MARGIN, right = GetSize().x - MARGIN;
    for (const float part : {0.25f, 0.75f}) {
        const float top = std::floor(GetSize().y * part - BAR_HEIGHT / 2), bottom = top + BAR_HEIGHT;
        const Vec2 corners[4] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
        renderer.DrawColored(corners, colors, 4);
    }
}

void Slider::DrawKnob() const {
    const double value = GetValue();
    if (std::isnan(value)) return;
    const Vec2 middle(std::round(GetKnobX(value)), std::round(GetSize().y / 2));
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const rendering::ScopedColor kept;
    renderer.MultColor(KNOB_COLOR);
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    const Vec2 half(KNOB_HALF_WIDTH, KNOB_HALF_HEIGHT);
    renderer.DrawQuad(middle - half, middle + half);
}

}  // namespace gui
