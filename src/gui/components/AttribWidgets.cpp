#include "gui/components/AttribWidgets.h"

#include <algorithm>
#include <limits>

namespace gui {
namespace {

AbstractToggleButton::State ToState(bool on) {
    return on ? AbstractToggleButton::On : AbstractToggleButton::Off;
}

}  // namespace

template <class T>
AttribGroup<T>::AttribGroup(const Attribs& attribs) : m_attribs(attribs.begin(), attribs.end()) {}

template <class T>
void AttribGroup<T>::DropDead() {
    m_attribs.erase(
        std::remove_if(m_attribs.begin(), m_attribs.end(), [](const auto& attrib) { return !attrib; }),
        m_attribs.end());
}

template <class T>
bool AttribGroup<T>::AreAll(const T& value) const {
    return std::all_of(m_attribs.begin(), m_attribs.end(),
                       [&](const auto& attrib) { return !attrib || attrib.Get()->Get() == value; });
}

template <class T>
void AttribGroup<T>::Write(const T& value) {
    for (const auto& weak : m_attribs) {
        const util::LockPtr<script::TAttrib<T>> attrib = weak.Lock();
        if (attrib) attrib->SetValue(script::ValueToObject(value));
    }
}

template class AttribGroup<bool>;
template class AttribGroup<float>;

// ---- sliders -----------------------------------------------------------------------------------------

void BoundSlider::Update(float dt) {
    Slider::Update(dt);
    if (!IsDragging()) Refresh();
}

void BoundSlider::Refresh() {
    SetValueSilent(Read() / m_factor);
}

void BoundSlider::SetFactor(double factor) {
    m_factor = factor;
    Refresh();
}

void BoundSlider::FireChange() {
    Write(GetValue() * m_factor);
    Slider::FireChange();
}

FunctionSlider::FunctionSlider(double min, double max, const Getter& getter, const Setter& setter,
                               const String& name)
    : BoundSlider(min, max, name), m_getter(getter), m_setter(setter) {
    Refresh();
}

AttribSlider::AttribSlider(double min, double max, const script::TAttribPtr<float>& attrib,
                           const String& name)
    : BoundSlider(min, max, name), m_attrib(attrib) {
    Refresh();
}

void AttribSlider::Write(double value) {
    m_attrib->SetValue(script::ValueToObject(static_cast<float>(value)));
}

MultiAttribSlider::MultiAttribSlider(double min, double max, const AttribGroup<float>::Attribs& attribs,
                                     const String& name)
    : BoundSlider(min, max, name), m_group(attribs) {
    Refresh();
}

double MultiAttribSlider::Read() {
    m_group.DropDead();
    const bool hasValue = !m_group.IsEmpty() && m_group.AreAll(m_group.GetFirst());
    return hasValue ? m_group.GetFirst() : std::numeric_limits<double>::quiet_NaN();
}

// ---- checkboxes --------------------------------------------------------------------------------------

AttribCheckbox::AttribCheckbox(const String& text, const script::TAttribPtr<bool>& attrib, const String& name)
    : Checkbox(text, name), m_attrib(attrib) {
    SetStateSilent(ToState(m_attrib->Get()));
}

void AttribCheckbox::Update(float dt) {
    Checkbox::Update(dt);
    SetStateSilent(ToState(m_attrib->Get()));
}

void AttribCheckbox::SetState(State state) {
    m_attrib->SetValue(script::ValueToObject(state == On));
    Checkbox::SetState(state);
}

MultiAttribCheckbox::MultiAttribCheckbox(const String& text, const AttribGroup<bool>::Attribs& attribs,
                                         const String& name)
    : Checkbox(text, name), m_group(attribs) {
    Refresh();
}

void MultiAttribCheckbox::Update(float dt) {
    Checkbox::Update(dt);
    Refresh();
}

void MultiAttribCheckbox::Refresh() {
    m_group.DropDead();
    const bool isKnown = !m_group.IsEmpty() && m_group.AreAll(m_group.GetFirst());
    SetStateSilent(isKnown ? ToState(m_group.GetFirst()) : Unknown);
}

void MultiAttribCheckbox::SetState(State state) {
    m_group.Write(state == On);
    Checkbox::SetState(state);
}

}  // namespace gui
