#pragma once

namespace gui {

// Whether the bar at which text is typed is lit: half a second on, half a second off. Some seconds after the
// last key it stays on, so that a picture in which nothing happens need not be drawn.
bool IsCaretLit(double lastInput);  // seconds of util::Clock

}  // namespace gui
