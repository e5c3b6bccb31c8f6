#pragma once

#include "app/widgets/EntityGroup.h"
#include "app/widgets/InfoLabel.h"
#include "gui/Component.h"
#include "gui/components/Slider.h"

namespace app {

// The figures of the entities: sums of area and mass, the rest of the first one.
class EntityInfo : public InfoLabel {
  public:
    explicit EntityInfo(const EntityGroup& group);
};

// Gives all entities one colour.
class ColorChooser : public gui::Component {
  public:
    explicit ColorChooser(const EntityGroup& group);

    void Update(float dt) override;

  private:
    void FollowColor();
    void SetHSL(math::Vec3 hsl);
    void AddSlider(const char* key, math::real math::Vec3::*part, double max, int decimals);

    const EntityGroup m_group;
    math::Vec3 m_hsl;  // kept apart from the colour, which has no hue when it is grey
};

// So that each drag of the slider is a step of the history, "UndoSliderChange".
void MakeUndoable(gui::Slider& slider, Scene& scene);

}  // namespace app
