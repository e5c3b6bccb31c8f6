#include "bench/Driver.h"

#include <SDL.h>
#include <dlfcn.h>

#include <cstring>

#include "rendering/Gl.h"

// What this program defines comes before what the libraries define under the same name, so the calls of the
// rendering unit end here; they are passed on to the library that comes next.

namespace bench {

static bool s_isIdle = false;

ScopedIdleDriver::ScopedIdleDriver() {
    s_isIdle = true;
}

ScopedIdleDriver::~ScopedIdleDriver() {
    s_isIdle = false;
}

template <class Function>
static Function* FindNext(const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The rendering unit asks the library for the function that copies the frame.
static void* s_copyTexSubImage = nullptr;

static void GLAPIENTRY CopyTexSubImage(GLenum target, GLint level, GLint left, GLint bottom, GLint x, GLint y,
                                       GLsizei width, GLsizei height) {
    if (s_isIdle) return;
    const auto copy = reinterpret_cast<decltype(&CopyTexSubImage)>(s_copyTexSubImage);
    copy(target, level, left, bottom, x, y, width, height);
}

}  // namespace bench

extern "C" {

void GLAPIENTRY glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    static const auto s_next = bench::FindNext("glDrawArrays", &glDrawArrays);
    if (!bench::s_isIdle) s_next(mode, first, count);
}

void GLAPIENTRY glClear(GLbitfield mask) {
    static const auto s_next = bench::FindNext("glClear", &glClear);
    if (!bench::s_isIdle) s_next(mask);
}

void* SDLCALL SDL_GL_GetProcAddress(const char* name) {
    static const auto s_next = bench::FindNext("SDL_GL_GetProcAddress", &SDL_GL_GetProcAddress);
    void* const function = s_next(name);
    if (function == nullptr || std::strcmp(name, "glCopyTexSubImage2D") != 0) return function;
    bench::s_copyTexSubImage = function;
    return reinterpret_cast<void*>(&bench::CopyTexSubImage);
}
}
