#include "input/Sdl2.h"

#include <dlfcn.h>

namespace gui {

void* FindSdl2Function(const char* name) {
    void* const library = dlopen("libSDL2-2.0.so.0", RTLD_NOLOAD | RTLD_LAZY);
    if (library == nullptr) return nullptr;
    void* const function = dlsym(library, name);
    dlclose(library);  // ends this look-up's hold only
    return function;
}

}  // namespace gui
