#pragma once

#include <limits>

#include "gui/components/Label.h"
#include "gui/components/Slider.h"

namespace gui {

// A name, a slider and its value in a row of fixed widths, so that a changing value moves nothing.
class LabeledSlider : public Component {
  public:
    // The value has `decimals` behind the point, or fewer for want of room, and `unit`, as " rpm", behind it.
    LabeledSlider(const String& text, const SliderPtr& slider, int decimals, const String& unit = String(),
                  const String& name = "LabeledSlider");

    void Update(float dt) override;
    String GetShownText() const override { return m_label->GetText(); }

    const String& GetValueText() const { return m_valueLabel->GetText(); }

    // The ends that stand for more than a number as "-inf" and "+inf", no one value as "-".
    String FormatValue(double value) const;

  private:
    void ShowValue();

    const SliderPtr m_slider;
    const int m_decimals;
    const String m_unit;
    double m_shownValue = std::numeric_limits<double>::quiet_NaN();  // no number yet
    LabelPtr m_label;
    LabelPtr m_valueLabel;
};

}  // namespace gui
