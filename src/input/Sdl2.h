#pragma once

namespace gui {

// A function of the SDL 2 library, on which the 1.2 compatibility library stands; null where this process
// has not loaded one.
void* FindSdl2Function(const char* name);

template <class Function>
Function* FindSdl2(const char* name) {
    return reinterpret_cast<Function*>(FindSdl2Function(name));
}

}  // namespace gui
