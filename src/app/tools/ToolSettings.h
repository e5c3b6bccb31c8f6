#pragma once

#include <functional>

#include "app/Fwd.h"
#include "math/Vector.h"
#include "script/Attributes.h"

namespace app {

// The settings of the tools; in scripts they belong to "App".
struct ToolSettings {
    explicit ToolSettings(script::Reflected& owner, const AppGUISettingsPtr& interface);

    const script::AttribPtr<float> m_minPointDist;  // cm on the screen
    const script::AttribPtr<float> m_maxPointDist;  // cm on the screen
    const script::AttribPtr<float> m_chainDensityFactor;
    const script::AttribPtr<float> m_dragToolStrength;
    const script::AttribPtr<bool> m_drawInside;  // of App.AppGUI
};

// What a tool works on and with, handed to each when it is made. All of it outlives the tools.
struct Workbench {
    Scene& m_scene;
    View& m_view;
    const ToolSettings& m_settings;
    // Shows the user the text of a language key for a moment, beside a place in the world. May be empty.
    std::function<void(const char* key, math::Vec2 world)> m_tell;
};

}  // namespace app
