#pragma once

#include "app/Fwd.h"
#include "gui/Fwd.h"
#include "script/Fwd.h"

namespace app {

class Commands;
struct DrawSettings;

// What a window works on and with, handed to each when it is made. All of it outlives the windows.
struct Desk {
    Scene& m_scene;
    View& m_view;
    const Commands& m_commands;
    AppGUISettings& m_settings;
    const DrawSettings& m_drawSettings;
    script::TAttribPtr<bool> m_shaders;  // null where there is none
    script::AttribPtr<int> m_maxDrops;   // that one shape may turn into
    script::AttribPtr<float> m_dpi;      // of the screen
    gui::Component& m_interface;         // the parent of all windows
    gui::Component& m_world;             // its parent: what is added here lies above all windows
};

}  // namespace app
