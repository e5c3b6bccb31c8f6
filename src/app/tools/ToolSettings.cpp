#include "app/tools/ToolSettings.h"

#include "app/scene/AppGUISettings.h"
#include "script/Reflected.h"

namespace app {

ToolSettings::ToolSettings(script::Reflected& owner, const AppGUISettingsPtr& interface)
    : m_minPointDist(script::DeclareAttrib(owner, "minPointDist", 0.2f)),
      m_maxPointDist(script::DeclareAttrib(owner, "maxPointDist", 0.5f)),
      m_chainDensityFactor(script::DeclareAttrib(owner, "chainDensityFactor", 20.0f)),
      m_dragToolStrength(script::DeclareAttrib(owner, "dragToolStrength", 0.25f)),
      m_drawInside(interface->m_drawInside) {}

}  // namespace app
