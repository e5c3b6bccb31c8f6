#include "core/DriverAhead.h"

#include <GL/glx.h>
#include <dlfcn.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <thread>

// Runs beside everything else in the program, so it shares nothing with it: no log, no counted object, a
// connection to the display of its own.
namespace core {

namespace {

// GLX asks the server which library serves the screen, and loads that for the answer.
bool LoadVendorLibrary() {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) return false;
    const char* const vendor = glXGetClientString(display, GLX_VENDOR);
    const bool isMesa = vendor != nullptr && std::string(vendor).rfind("Mesa", 0) == 0;
    XCloseDisplay(display);
    return isMesa;
}

// With a trailing slash; empty when the library is not loaded.
std::string GetFolderOf(const char* library) {
    void* const handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr) return "";
    Dl_info info;
    void* const symbol = dlsym(handle, "__glx_Main");  // which every vendor's library has
    const bool isKnown = symbol != nullptr && dladdr(symbol, &info) != 0;
    dlclose(handle);
    const std::string path = isKnown ? info.dli_fname : "";
    return path.substr(0, path.rfind('/') + 1);
}

// Mesa's drivers are one file under many names. It stays loaded.
void LoadMesaDriver() {
    const char* const wished = std::getenv("LIBGL_DRIVERS_PATH");
    const std::string folder =
        wished != nullptr ? wished + std::string("/") : GetFolderOf("libGLX_mesa.so.0") + "dri/";
    dlopen((folder + "swrast_dri.so").c_str(), RTLD_NOW | RTLD_LOCAL);
}

bool UsesX() {
    const char* const driver = std::getenv("SDL_VIDEODRIVER");
    return std::getenv("DISPLAY") != nullptr && (driver == nullptr || driver == std::string("x11"));
}

}  // namespace

void LoadDriverAhead() {
    if (!UsesX() || XInitThreads() == 0) return;
    try {
        std::thread([] {
            if (LoadVendorLibrary()) LoadMesaDriver();
        }).detach();
    } catch (const std::system_error&) {
        return;  // no second thread: then later, in this one
    }
}

}  // namespace core
