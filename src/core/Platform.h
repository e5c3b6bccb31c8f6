#pragma once

#include "math/Vector.h"
#include "util/FileSystem.h"

// The seam to the machine's services that SDL 1.2 does not offer. Its compatibility library stands on SDL 2,
// which does; where that is not so, each operation answers as if the service were missing. None of them
// blocks where there is no display.
namespace core {

// A box with OK and Cancel. True if and only if the user pressed Cancel. While it stands, termination
// signals end the process as they do by default.
bool ShowMessageBox(const String& caption, const String& text);

// Says something to the user outside the window: on standard error, in the log at Error, in a message box
// with the hint that Cancel debugs. True if and only if the user pressed Cancel.
bool ShowMsg(const String& caption, const String& text);

// Whether there is something to show a window on, once the library has started. Where it finds no display
// it falls back to drawing nowhere, which is welcome only to those who ask it for that (SDL_VIDEODRIVER).
bool HasDisplay();

// Pixels; 0, 0 when unknown. Right only before the first video mode has been set.
math::Vec2i GetDesktopSize();

// Pixels per inch of the first screen; 0 where that is unknown or not to be believed.
float GetDisplayDPI();

// Keeps the connection to the display for a scope in which the 1.2 library stops its video part: the last
// client that leaves may end an X server.
class ScopedDisplay {
  public:
    ScopedDisplay();
    ~ScopedDisplay();
    ScopedDisplay(const ScopedDisplay&) = delete;
    ScopedDisplay& operator=(const ScopedDisplay&) = delete;
};

// Synchronisation of buffer swaps with the display, for the current context.
bool HasSwapControl();
bool GetSwapInterval();
void SetSwapInterval(bool enabled);

// Whether the 1.2 library draws into a frame buffer of its own and stretches that over the window, as its own
// default is: a screen of another resolution and smoothing need it, but it costs a copy of each frame. Takes
// effect when its video part is started. A wish of the user's in the environment stays.
void SetStretching(bool stretching);

// From now on files that the user drops on the window are kept until they are taken, in order. After each
// start of the library's video part.
void CatchDroppedFiles();
util::StringList TakeDroppedFiles();

// From now on SIGTERM, SIGINT and SIGHUP only raise a flag, which TakeTerminationRequest reads and clears.
void CatchTerminationSignals();
bool TakeTerminationRequest();

}  // namespace core
