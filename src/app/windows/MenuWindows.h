#pragma once

#include "app/windows/Desk.h"

namespace app {

// The scene, the program and its windows.
gui::WindowPtr MakeFileWindow(const Desk& desk);

// The settings that most users want.
gui::WindowPtr MakeOptionsWindow(const Desk& desk);

}  // namespace app
