#include "rendering/Context.h"

#include <SDL.h>

#include <algorithm>
#include <stdexcept>

#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/Exception.h"

namespace rendering {

bool Context::s_exists = false;
uint32_t Context::s_generation = 0;
math::Vec2i Context::s_size;
bool Context::s_hasAlpha = true;
int Context::s_textureUnits = 1;
bool Context::s_useTargets = true;
bool Context::s_useShaders = false;

namespace {

using CopyTexSubImageFunction = void(GLAPIENTRY*)(GLenum, GLint, GLint, GLint, GLint, GLint, GLsizei,
                                                  GLsizei);
using ReadPixelsFunction = void(GLAPIENTRY*)(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, GLvoid*);

// As the library hands them out for the present context.
CopyTexSubImageFunction s_copyTexSubImage = nullptr;
ReadPixelsFunction s_readPixels = nullptr;

// Without an X display the GLX part of GLEW fails although all of GL itself is there.
bool IsGlewUsable(GLenum result) {
    return result == GLEW_OK || result == GLEW_ERROR_NO_GLX_DISPLAY;
}

}  // namespace

void Context::InitExtensions() {
    const GLenum result = glewInit();
    if (!IsGlewUsable(result)) {
        const char* const reason = reinterpret_cast<const char*>(glewGetErrorString(result));
        THROW(std::runtime_error, String("GLEW Error: ") + reason);
    }
    ++s_generation;
    s_textureUnits = 1;
    if (GLEW_ARB_multitexture && GLEW_ARB_texture_env_combine) {
        glGetIntegerv(GL_MAX_TEXTURE_UNITS_ARB, &s_textureUnits);
    }
    FetchReadFunctions();
}

void Context::FetchReadFunctions() {
    s_copyTexSubImage =
        reinterpret_cast<CopyTexSubImageFunction>(SDL_GL_GetProcAddress("glCopyTexSubImage2D"));
    s_readPixels = reinterpret_cast<ReadPixelsFunction>(SDL_GL_GetProcAddress("glReadPixels"));
    if (s_copyTexSubImage == nullptr) s_copyTexSubImage = glCopyTexSubImage2D;
    if (s_readPixels == nullptr) s_readPixels = glReadPixels;
}

void Context::SetViewport(int width, int height) {
    glViewport(0, 0, width, height);
    s_size = {width, height};
    s_exists = true;
    Renderer::Instance().RestoreColor();
}

void Context::CopyTexSubImage(math::Vec2i min, math::Vec2i size) {
    s_copyTexSubImage(GL_TEXTURE_2D, 0, min.x, min.y, min.x, min.y, size.x, size.y);
}

void Context::ReadPixels(int width, int height, unsigned int format, void* pixels) {
    glPixelStorei(GL_PACK_ALIGNMENT, 1);  // rows of any width follow each other without gaps
    s_readPixels(0, 0, width, height, format, GL_UNSIGNED_BYTE, pixels);
}

bool HasMultiTexturing() {
    return Context::Exists() && GLEW_ARB_multitexture;
}

bool HasBorderClamp() {
    return Context::Exists() && GLEW_ARB_texture_border_clamp;
}

bool HasFreeTextureSizes() {
    return Context::Exists() && GLEW_ARB_texture_non_power_of_two && GLEW_VERSION_1_4;
}

bool HasTargets() {
    return Context::Exists() && Context::UseTargets() && GLEW_EXT_framebuffer_object;
}

bool HasShaderPrograms() {
    return Context::Exists() && GLEW_ARB_vertex_program && GLEW_ARB_fragment_program;
}

}  // namespace rendering
