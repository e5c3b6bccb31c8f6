#include "input/Input.h"
#include "input/Key.h"
#include "util/Clock.h"

// The gesture machine of gui::Input: what makes of a press a click or a drag.
namespace gui {

namespace {

float GetDistance(math::Vec2 a, math::Vec2 b) {
    return math::Length(a - b);
}

}  // namespace

void Input::OnKeyEvent(KeyEvent& event) {
    m_keyDown[event.m_key] = event.m_pressed;
    InputDelegator::OnKeyEvent(event);
    const bool canDrag = event.m_key >= Key::LeftMouse && event.m_key <= Key::RightMouse;
    if (!event.m_handled && canDrag) AdvanceGesture(event);
}

void Input::AdvanceGesture(KeyEvent& event) {
    if (event.m_pressed) {
        if (m_gesture == Gesture::Idle) OpenGesture(event);
    } else if (event.m_key == m_pressKey) {
        if (m_gesture == Gesture::Pressed)
            DeliverClick(event);
        else if (m_gesture == Gesture::Dragging)
            event.m_handled = EndDrag(event.m_position);
    }
}

void Input::OpenGesture(const KeyEvent& event) {
    m_pressTime = util::Clock::Now();
    m_pressPosition = event.m_position;
    m_pressKey = event.m_key;
    m_gesture = Gesture::Pressed;
}

// The second of two quick clicks on one place counts 2, a third begins anew.
void Input::DeliverClick(KeyEvent& event) {
    m_gesture = Gesture::Idle;
    const bool isSecond = m_lastClickKey == m_pressKey &&
                          m_pressTime - m_lastClickTime <= m_settings.m_clickTimeTolerance &&
                          GetDistance(m_pressPosition, m_lastClickPosition) <= m_settings.m_clickTolerance;
    m_lastClickKey = isSecond ? 0 : m_pressKey;
    m_lastClickTime = m_pressTime;
    m_lastClickPosition = m_pressPosition;
    ClickEvent click;
    click.m_position = m_pressPosition;
    click.m_key = m_pressKey;
    click.m_clicks = isSecond ? 2 : 1;
    OnClick(click);
    event.m_handled = click.m_handled;
}

bool Input::EndDrag(math::Vec2 position) {
    m_gesture = Gesture::Idle;
    DragEvent end;
    end.m_start = m_pressPosition;
    end.m_position = position;
    end.m_key = m_pressKey;
    OnDragEnd(end);
    return end.m_handled;
}

bool Input::StartDrag() {
    m_gesture = Gesture::Dragging;
    DragEvent start;
    start.m_start = start.m_position = m_pressPosition;
    start.m_key = m_pressKey;
    OnDragStart(start);
    return start.m_handled;
}

bool Input::ContinueDrag(math::Vec2 delta, math::Vec2 position) {
    DragEvent drag;
    drag.m_start = m_pressPosition;
    drag.m_delta = delta;
    drag.m_position = position;
    drag.m_key = m_pressKey;
    OnDrag(drag);
    return drag.m_handled;
}

void Input::OnMouseMove(MouseMoveEvent& event) {
    InputDelegator::OnMouseMove(event);
    if (event.m_handled) return;
    if (m_gesture == Gesture::Dragging) {
        event.m_handled = ContinueDrag(event.m_delta, event.m_position);
        return;
    }
    const bool movedAway = m_gesture == Gesture::Pressed &&
                           GetDistance(event.m_position, m_pressPosition) > m_settings.m_clickTolerance;
    if (!movedAway || !IsKeyDown(m_pressKey)) return;
    const bool startHandled = StartDrag();
    const bool dragHandled = ContinueDrag(event.m_position - m_pressPosition, event.m_position);
    event.m_handled = startHandled || dragHandled;
}

void Input::ApplyHoldRule() {
    if (m_gesture == Gesture::Idle) return;
    const bool isUp = !IsKeyDown(m_pressKey);  // a listener took the release
    if (m_gesture == Gesture::Dragging) {
        if (isUp) EndDrag(m_mousePosition);
        return;
    }
    if (!(util::Clock::Now() - m_pressTime > m_settings.m_clickTimeTolerance)) return;
    if (isUp) {
        m_gesture = Gesture::Idle;
        return;
    }
    StartDrag();
    if (m_mousePosition != m_pressPosition) ContinueDrag(m_mousePosition - m_pressPosition, m_mousePosition);
}

}  // namespace gui
