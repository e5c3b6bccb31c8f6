#include "app/tools/JointTool.h"

#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/history/Snapshot.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"

namespace app {

// Over one shape of the world's own body and nothing else there is no second partner, and nothing is made.
void JointTool::OnClick(gui::ClickEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse || event.m_clicks != 1) return;
    const math::Vec2 world = m_view.GUIToWorld(event.m_position);
    if (!m_scene.GetEntityAt(world)) return Tell("NothingToJoin", world);
    event.m_handled = true;
    const SnapshotPtr before = new Snapshot(m_scene);
    const JointEntityPtr joint = Make(ICON_SIZE * m_view.GetCmToWorld());
    joint->SetScene(&m_scene);
    joint->Attach(world, world);
    if (joint->IsOrphaned()) return Tell("NothingToJoin", world);
    joint->Rebuild();
    AddToScene(joint, before, m_undoName);
}

JointEntityPtr HingeTool::Make(math::real size) const {
    return new HingeEntity(size);
}

JointEntityPtr FixJointTool::Make(math::real size) const {
    return new FixJointEntity(size);
}

}  // namespace app
