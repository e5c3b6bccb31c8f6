#pragma once

#include "app/widgets/EntityGroup.h"
#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

// What can be done with the selected entities, or with the empty scene when there are none. Made for the
// selection of one moment; torn off by its title it stays, until its entities have left the scene.
class EntityPopup : public gui::Window {
  public:
    explicit EntityPopup(const Desk& desk);
    ~EntityPopup() noexcept(false) override;

    void Update(float dt) override;

  private:
    void AddSceneRows();
    void AddEntityRows();
    void AddOrderRows();
    void AddMenuRows();
    // A row that closes the popup before it acts on the entities.
    void AddFinalRow(const char* key, const char* icon, const std::function<void(const EntitySet&)>& act);
    void AddRow(const char* key, const char* icon, const std::function<void(const EntitySet&)>& act);
    void AddMenu(const char* key, const char* icon, const std::function<gui::WindowPtr()>& factory);

    gui::WindowPtr MakeWindowsMenu() const;
    gui::WindowPtr MakeInfoMenu() const;
    gui::WindowPtr MakeColorMenu() const;
    gui::WindowPtr MakeCollisionMenu() const;
    gui::WindowPtr MakeSelectMenu() const;
    gui::WindowPtr MakeGeomMenu() const;
    gui::WindowPtr MakeHingeMenu() const;
    gui::WindowPtr MakeSpringMenu() const;

    const Desk m_desk;
    const EntityGroup m_group;
    const bool m_isForScene;  // there were no entities
    const gui::ComponentPtr m_rows;
};

}  // namespace app
