#include "gui/components/LabeledSlider.h"

#include <boost/format.hpp>
#include <cmath>

#include "gui/Layout.h"
#include "gui/LookAndFeel.h"

namespace gui {
namespace {

constexpr float LABEL_WIDTH = 110;  // GUI units
constexpr float SLIDER_WIDTH = 120;
constexpr float VALUE_WIDTH = 60;
constexpr float FRAME = 6;  // of the window, into which a value may reach

}  // namespace

LabeledSlider::LabeledSlider(const String& text, const SliderPtr& slider, int decimals, const String& unit,
                             const String& name)
    : Component(name, new ListLayout(ListLayout::Horizontal)),
      m_slider(slider),
      m_decimals(decimals),
      m_unit(unit),
      m_label(new Label(text)),
      m_valueLabel(new Label) {
    m_label->SetFixedWidth(LABEL_WIDTH);
    m_valueLabel->SetFixedWidth(VALUE_WIDTH);
    m_slider->SetSize(SLIDER_WIDTH, ROW_HEIGHT);
    for (const ComponentPtr& child : ComponentList{m_label, m_slider, m_valueLabel}) AddChild(child);
    m_slider->GetOnChange().Add(new util::Callback([this] { ShowValue(); }, this));
    ShowValue();
}

// A bound slider follows its attribute without a call.
void LabeledSlider::Update(float dt) {
    Component::Update(dt);
    ShowValue();
}

void LabeledSlider::ShowValue() {
    const double value = m_slider->GetValue();
    if (value == m_shownValue) return;  // a text takes long to measure
    m_shownValue = value;
    const String text = FormatValue(value);
    if (text != m_valueLabel->GetText()) m_valueLabel->SetText(text);
}

String LabeledSlider::FormatValue(double value) const {
    if (std::isnan(value)) return "-";
    if (m_slider->IsMinClamp(value)) return "-inf";
    if (m_slider->IsMaxClamp(value)) return "+inf";
    String text;
    for (int decimals = m_decimals; decimals >= 0; --decimals) {
        text = boost::str(boost::format("%." + std::to_string(decimals) + "f") % value) + m_unit;
        if (TEXT_MARGIN + FormatText(GetTextFormat(), text).m_width <= VALUE_WIDTH + FRAME) break;
    }
    return text;
}

}  // namespace gui
