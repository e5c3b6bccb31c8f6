#pragma once

#include "util/String.h"

namespace gui {

// What the application may ask of the window it lives in. Implemented by the core, handed over at start.
class WindowHost {
  public:
    virtual void Quit() = 0;  // the main loop ends; scene and settings are saved

    virtual bool IsFullscreen() const = 0;
    virtual void SetFullscreen(bool fullscreen) = 0;  // makes the window anew; failures throw

    // Makes the window anew with the settings of the script object "System". Failures throw.
    virtual void RecreateWindow() = 0;

    // Shows what is open before the program's own caption; an empty name leaves that alone.
    virtual void SetDocumentName(const String& name) = 0;

    virtual double GetFPS() const = 0;  // frames per second, measured; 0 until first known

  protected:
    ~WindowHost() = default;
};

}  // namespace gui
