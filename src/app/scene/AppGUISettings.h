#pragma once

#include "script/Attributes.h"
#include "script/Reflected.h"

namespace app {

// The settings of the interface, in scripts "App.AppGUI". They live apart from it, because configurations
// are read before the interface is built and it may be built anew.
class AppGUISettings : public script::Reflected {
  public:
    AppGUISettings();

    const script::AttribPtr<String> m_tool;          // the selected one, by its name
    const script::AttribPtr<float> m_zoomFactor;     // exponent of 2 per notch of the wheel
    const script::AttribPtr<bool> m_drawInside;      // drawing tools may start on an entity
    const script::AttribPtr<bool> m_leftClickMenus;  // a left click opens the popup as well
    const script::AttribPtr<bool> m_drawHingesWhenRunning;
    const script::AttribPtr<String> m_windows;  // which are open, and where; see WindowSet
    const script::AttribPtr<String> m_keys;     // of commands that have not their built-in one; see Commands
    const script::AttribPtr<String> m_hintsDone;  // the hints of the first minute that are not shown again
    // The name of the scene that is open, see Scene::GetName: a recovered scene is still that file.
    const script::AttribPtr<String> m_sceneName;
};

}  // namespace app
