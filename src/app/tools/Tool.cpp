#include "app/tools/Tool.h"

#include "app/App.h"
#include "app/entities/Entity.h"
#include "app/history/Actions.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "input/Key.h"

namespace app {

void Tool::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    if (event.m_handled || !event.m_pressed || event.m_key != gui::Key::Escape) return;
    event.m_handled = Cancel();
}

bool Tool::MayDrawAt(math::Vec2 world) {
    const App& app = App::Instance();
    return app.GetGUISettings().m_drawInside->Get() || !app.GetEntityAt(world);
}

void Tool::AddToScene(const EntityPtr& entity, const SnapshotPtr& before, const char* undoName) {
    App& app = App::Instance();
    app.AddEntity(entity);
    Undoer::Instance().AddRestorer(before, undoName);
}

bool Tool::SelectInside(const physics::Polygon& lasso) {
    App& app = App::Instance();
    EntitySet inside;
    for (const EntityPtr& entity : app.GetEntities()) {
        if (entity->IsInsidePolygon(lasso)) inside.insert(entity);
    }
    if (inside.empty()) return false;
    app.GetSelection().Set(inside);
    return true;
}

}  // namespace app
