#pragma once

#include "gui/Fwd.h"
#include "script/Fwd.h"
#include "util/String.h"

// The interface as scripts, tests and assistive tools see it.
namespace gui {

// Every visible component of a kind of its own under `root`, topmost first, each as
// [kind, key, text, [x, y], [width, height], state], in pixels of the window.
script::ObjectPtr ListWidgets(Component& root, float scale);

// The one that has the keyboard's focus, in the same form; an empty list for none.
script::ObjectPtr DescribeFocus(float scale);

// Presses the topmost control with the language key `key` by the mouse, where a user would: its window comes
// to the front, a list is scrolled to it. Throws ScriptException where there is none, or it cannot be
// reached.
void PressWidget(Component& root, const String& key);

}  // namespace gui
