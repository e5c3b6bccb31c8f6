#include "app/App.h"
#include "app/AppGUI.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"
#include "util/RunSlot.h"

// What App does with the interface above it.
namespace app {

void App::CreateGUI() {
    const AppGUIPtr previous = m_appGUI;
    if (previous) RemoveChild(previous);
    m_appGUI = new AppGUI(previous.Get());
    m_appGUI->SetSize(2, 2);  // until it takes this component's size
    AddChild(m_appGUI);
}

void App::OnExit() {
    // The autosaved scene goes only when its successor is on the disk.
    if (!m_appGUI->SaveSceneAs(ONEXIT_SCENE, true)) return;
    const util::FileSystem& files = util::FileSystem::Instance();
    files.Remove(files.GetScenesDir() + util::RunSlot::Instance().GetAutosaveScene());
}

}  // namespace app
