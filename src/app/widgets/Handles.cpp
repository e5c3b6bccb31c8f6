#include "app/widgets/Handles.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "app/Language.h"
#include "app/scene/View.h"
#include "app/widgets/MenuButton.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "input/Key.h"
#include "rendering/Renderer.h"

namespace app {
namespace {

constexpr float PAN_FACTOR = -2;
constexpr float NOTCH = 10;  // GUI units of a drag that zoom as one notch of the wheel does
constexpr math::Vec4 HOVER_COLOR(1.3f, 1.3f, 1.3f, 1.2f);

struct Arrow {
    int m_key;
    math::Vec2 m_direction;
};
const Arrow ARROWS[] = {
    {gui::Key::Left, {-1, 0}}, {gui::Key::Right, {1, 0}}, {gui::Key::Up, {0, -1}}, {gui::Key::Down, {0, 1}}};

}  // namespace

InfDraggable::InfDraggable(const String& icon, const String& name) : Draggable(name), m_icon(GetIcon(icon)) {
    SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    SetSize(ICON_SIZE, ICON_SIZE);
}

void InfDraggable::OnDrag(gui::DragEvent& event) {
    Draggable::OnDrag(event);
    if (event.m_handled || !IsDragged()) return;
    event.m_handled = true;
    Move(event.m_delta);
}

void InfDraggable::OnKeyEvent(gui::KeyEvent& event) {
    Draggable::OnKeyEvent(event);
    if (event.m_handled || !event.m_pressed || !HasFocus()) return;
    const auto arrow = std::find_if(std::begin(ARROWS), std::end(ARROWS),
                                    [&event](const Arrow& a) { return a.m_key == event.m_key; });
    if (arrow == std::end(ARROWS)) return;
    event.m_handled = true;
    Move(arrow->m_direction * NOTCH);
}

void InfDraggable::DrawComp() {
    if (IsDragged() || IsMouseInside()) rendering::Renderer::Instance().MultColor(HOVER_COLOR);
    Draggable::DrawComp();
    gui::DrawImage(m_icon, {0, 0}, GetSize());
    gui::Focus::DrawRing(*this);
}

Panner::Panner(View& view) : InfDraggable("tools/pan", "Panner"), m_view(view) {
    SetKey("TipPan");
    SetToolTip(Translate("TipPan"));
}

void Panner::Move(math::Vec2 delta) {
    m_view.Pan(PAN_FACTOR * delta.x, PAN_FACTOR * delta.y, false);
}

Zoomer::Zoomer(View& view, const script::AttribPtr<float>& zoomFactor)
    : InfDraggable("tools/zoom", "Zoomer"), m_view(view), m_zoomFactor(zoomFactor) {
    SetKey("TipZoom");
    SetToolTip(Translate("TipZoom"));
}

void Zoomer::Move(math::Vec2 delta) {
    const float exponent = -delta.y / NOTCH * m_zoomFactor->Get();
    const float zoom = m_view.GetTargetWorldToGUI().m[0][0] * std::exp2(exponent);
    m_view.SetZoom(std::clamp(zoom, View::GetMinZoom(), View::GetMaxZoom()));
}

}  // namespace app
