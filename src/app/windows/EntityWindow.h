#pragma once

#include "app/widgets/EntityGroup.h"
#include "gui/Window.h"

namespace app {

// A window about entities, in rows. It closes when all of them have left the scene; one about none stays.
class EntityWindow : public gui::Window {
  public:
    EntityWindow(const char* titleKey, const EntityGroup& group);
    ~EntityWindow() noexcept(false) override;

    void Update(float dt) override;

  protected:
    const EntityGroup m_group;

  private:
    const bool m_isAboutSome;
};

}  // namespace app
