#pragma once

namespace core {

// Maps and links the GL driver in a second thread, while this one starts the library, reads the settings and
// so on: a driver and the compiler that it brings are half of the work of making a window. All that this
// changes is when they are loaded; a machine where it cannot be told which driver that will be loads it when
// the window is made.
void LoadDriverAhead();

}  // namespace core
