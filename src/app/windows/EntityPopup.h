#pragma once

#include "app/windows/Desk.h"
#include "app/windows/EntityWindow.h"

namespace app {

// What can be done with the selected entities, or with the empty scene when there are none. Made for the
// selection of one moment; torn off by its title it stays, until its entities have left the scene.
class EntityPopup : public EntityWindow {
  public:
    explicit EntityPopup(const Desk& desk);
    ~EntityPopup() noexcept(false) override;

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
    const gui::ComponentPtr m_rows;
};

}  // namespace app
