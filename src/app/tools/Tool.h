#pragma once

#include "app/Fwd.h"
#include "app/tools/ToolSettings.h"
#include "input/InputListener.h"
#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/Surface.h"

namespace app {

// What the mouse does to the world. One tool at a time is active; app::AppGUI holds them all and alone
// passes events on to them: a tool is added to no delegator.
//
// A gesture may be broken off at any moment by Cancel (escape, undo, a failure), and its remaining drag
// events still arrive. So a tool does nothing but between a drag start that it took and the end or the
// cancelling of it. Idle, a tool holds no entity and no body. Undo entries are made at the end of a
// gesture, with the snapshot of its start.
class Tool : public gui::InputListener {
  public:
    explicit Tool(const Workbench& bench)
        : m_scene(bench.m_scene), m_view(bench.m_view), m_settings(bench.m_settings), m_tell(bench.m_tell) {}

    // Once a frame while the tool is the active one.
    virtual void Update() {}
    // The preview, in world coordinates, over the scene.
    virtual void Draw() {}
    // Abandons what is under way. Whether there was something to abandon.
    virtual bool Cancel() { return false; }

    void OnKeyEvent(gui::KeyEvent& event) override;  // escape cancels

  protected:
    // Whether a shape may be drawn from this world point on: on empty ground, or anywhere if the user
    // wants to draw inside shapes.
    bool MayDrawAt(math::Vec2 world) const;
    // Whether the press starts a drawing; the event is handled then.
    bool TakesPress(gui::DragEvent& event) const;

    static physics::Surface GetSurface();  // of new shapes
    // The shape of an outline, with edges no longer than maxPointDist. Null, and the reason told, where the
    // outline makes none.
    physics::PolygonPtr MakePolygon(const math::Vec2List& outline) const;

    // A few words of that language key, beside the place, for a gesture that meant nothing.
    void Tell(const char* key, math::Vec2 world) const;

    // Ends the making of a shape: it joins the scene and the change goes to the undoer. `before` was taken
    // at the gesture's start, `undoName` is a language key.
    void AddToScene(const EntityPtr& entity, const SnapshotPtr& before, const char* undoName);
    // Makes all entities that lie inside the lasso the selection. Whether there are any.
    bool SelectInside(const physics::Polygon& lasso);

    Scene& m_scene;
    View& m_view;
    const ToolSettings& m_settings;

  private:
    const std::function<void(const char*, math::Vec2)> m_tell;
};

}  // namespace app
