#include "core/DriverAhead.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <thread>

// Runs beside everything else in the program, so it shares nothing with it: no log, no counted object, and no
// connection to the display, for two of these must not be opened at once.
namespace core {

namespace {

// With a trailing slash; empty when that is not known.
std::string GetFolderOf(void* library) {
    Dl_info info;
    void* const symbol = dlsym(library, "__glx_Main");  // which every vendor's library has
    const bool isKnown = symbol != nullptr && dladdr(symbol, &info) != 0;
    const std::string path = isKnown ? info.dli_fname : "";
    return path.substr(0, path.rfind('/') + 1);
}

// Mesa's drivers are one file under many names. Both libraries stay loaded.
void LoadMesaDriver() {
    void* const library = dlopen("libGLX_mesa.so.0", RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr) return;
    const char* const wished = std::getenv("LIBGL_DRIVERS_PATH");
    const std::string folder = wished != nullptr ? wished + std::string("/") : GetFolderOf(library) + "dri/";
    dlopen((folder + "swrast_dri.so").c_str(), RTLD_NOW | RTLD_LOCAL);
}

// Where the other vendor's kernel module is at work, its library serves the screen.
bool MayUseMesa() {
    const char* const driver = std::getenv("SDL_VIDEODRIVER");
    const bool usesX =
        std::getenv("DISPLAY") != nullptr && (driver == nullptr || driver == std::string("x11"));
    return usesX && access("/proc/driver/nvidia/version", F_OK) != 0;
}

}  // namespace

void LoadDriverAhead() {
    if (!MayUseMesa()) return;
    try {
        std::thread(&LoadMesaDriver).detach();
    } catch (const std::system_error&) {
        return;  // no second thread: then later, in this one
    }
}

}  // namespace core
