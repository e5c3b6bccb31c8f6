#pragma once

#include "app/widgets/EntityGroup.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/Checkbox.h"

namespace app {

// Checks of the menus on entities. Each change of an entity is a step of the history.

// A bool attribute of all entities.
class AttribGroupCheckbox : public gui::MultiAttribCheckbox {
  public:
    AttribGroupCheckbox(const char* key, const EntityGroup& group, const char* attrib);

    void SetState(State state) override;

  private:
    const EntityGroup m_group;
};

// Whether the view follows the first of the entities.
class FollowObjectCheckbox : public gui::Checkbox {
  public:
    explicit FollowObjectCheckbox(const EntityGroup& group);

    void Update(float dt) override;
    void SetState(State state) override;

  private:
    State GetTracking() const;

    const EntityGroup m_group;
};

// Whether the arrow keys drive the hinges' motors.
class ControllerSelector : public gui::Checkbox {
  public:
    explicit ControllerSelector(const EntityGroup& group);

    void Update(float dt) override;
    void SetState(State state) override;

  private:
    const EntityGroup m_group;
};

// A row of checks, one for each collision group: what shares none of them passes through each other.
class CollideSetMenu : public gui::Component {
  public:
    explicit CollideSetMenu(const EntityGroup& group);
};

}  // namespace app
