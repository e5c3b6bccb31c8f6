#include "app/scene/AppGUISettings.h"

namespace app {

AppGUISettings::AppGUISettings()
    : Reflected("AppGUI"),
      m_tool(script::DeclareAttrib(*this, "tool", "brush")),
      m_zoomFactor(script::DeclareAttrib(*this, "zoomFactor", 0.2f)),
      m_drawInside(script::DeclareAttrib(*this, "drawInside", false)),
      m_leftClickMenus(script::DeclareAttrib(*this, "leftClickMenus", false)),
      m_drawHingesWhenRunning(script::DeclareAttrib(*this, "drawHingesWhenRunning", true)),
      m_windows(script::DeclareAttrib(*this, "windows", "")),
      m_keys(script::DeclareAttrib(*this, "keys", "")),
      m_hintsDone(script::DeclareAttrib(*this, "hintsDone", "")),
      m_sceneName(script::DeclareAttrib(*this, "scene", "")) {}

}  // namespace app
