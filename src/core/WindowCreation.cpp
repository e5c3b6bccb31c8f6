#include <SDL/SDL.h>

#include <algorithm>

#include "core/Platform.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "logging/Log.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/Redraw.h"

// The making of the window, which is also its re-making: core::Subsystem's second half.
namespace core {

namespace {

constexpr int ALPHA_BITS = 8;  // what the drawing of water needs

constexpr int MAX_OLD_ERRORS = 16;  // GL remembers a few; more would be a broken driver

void SetGLAttribute(SDL_GLattr attribute, int value, const char* failure) {
    if (SDL_GL_SetAttribute(attribute, value) != 0) THROW(std::runtime_error, failure);
}

void SetGLAttributes(const WindowParams& params) {
    SetGLAttribute(SDL_GL_BUFFER_SIZE, params.m_depth, "Couldn't set buffer depth");
    if (params.m_depth == 32) {
        SetGLAttribute(SDL_GL_RED_SIZE, 8, "Couldn't set buffer red depth");
        SetGLAttribute(SDL_GL_GREEN_SIZE, 8, "Couldn't set buffer green depth");
        SetGLAttribute(SDL_GL_BLUE_SIZE, 8, "Couldn't set buffer blue depth");
        SetGLAttribute(SDL_GL_ALPHA_SIZE, 8, "Couldn't set buffer alpha depth");
    }
    SetGLAttribute(SDL_GL_DEPTH_SIZE, params.m_zDepth, "Couldn't set z-buffer depth");
    SetGLAttribute(SDL_GL_STENCIL_SIZE, params.m_stencilDepth, "Couldn't set stencil-buffer depth");
    // The library keeps its attributes from window to window, so that no smoothing has to be asked for too.
    const bool smooth = params.m_antiAlias > 1;
    SetGLAttribute(SDL_GL_MULTISAMPLEBUFFERS, smooth ? 1 : 0, "Couldn't set the AA buffer");
    SetGLAttribute(SDL_GL_MULTISAMPLESAMPLES, smooth ? params.m_antiAlias : 0, "Couldn't set the AA samples");
}

Uint32 GetVideoFlags(const WindowParams& params) {
    Uint32 flags = SDL_OPENGL;
    if (params.m_fullscreen) flags |= SDL_FULLSCREEN;
    if (params.m_resizable) flags |= SDL_RESIZABLE;
    if (!params.m_frame) flags |= SDL_NOFRAME;
    return flags;
}

// The library may draw into a frame buffer of its own (for multisampling, for instance), whose making fails
// without a word; drawing tells.
void CheckDrawing() {
    for (int i = 0; i < MAX_OLD_ERRORS && glGetError() != GL_NO_ERROR; ++i) continue;
    glClear(GL_COLOR_BUFFER_BIT);
    if (glGetError() == GL_INVALID_FRAMEBUFFER_OPERATION) {
        THROW(std::runtime_error, "Couldn't set video mode, SDL-error: The frame buffer can't be drawn to");
    }
}

// The screen may have another resolution, and the library smooths in the frame buffer that it stretches.
bool NeedsStretching(const WindowParams& params) {
    return params.m_fullscreen || params.m_antiAlias > 1;
}

math::Vec2i ClampResolution(math::Vec2i size) {
    return {std::clamp(size.x, MIN_WINDOW_SIZE, MAX_WINDOW_SIZE),
            std::clamp(size.y, MIN_WINDOW_SIZE, MAX_WINDOW_SIZE)};
}

}  // namespace

void Subsystem::CreateWindow(WindowParams params) {
    const bool hadWindow = rendering::Context::Exists();
    const WindowParams previous = m_windowParams;
    try {
        BuildWindow(params);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        RestoreWindow(previous);
        if (hadWindow) throw;
        Log(logging::Error, String(e.what()) + "; using the default window");
    }
}

// By now all GL resources are gone: without a window there is nothing to go on with.
void Subsystem::RestoreWindow(const WindowParams& params) {
    try {
        BuildWindow(params);
    } catch (...) {
        m_lostWindow = std::current_exception();
        throw;
    }
}

void Subsystem::BuildWindow(WindowParams params) {
    Log(logging::Info, "Creating window...");
    ResourceManager::Instance().DestroyAll();
    rendering::TextureManager::Instance().ReadAhead();  // while the driver is at work
    params.m_resolution = ClampResolution(params.m_resolution);
    gui::Input::Instance().DropCursor();
    if (NeedsStretching(params) && !m_stretches) StartStretching();
    SetVideoMode(params);
    gui::Input::Instance().Reset();
    Log(logging::Trace, "Init GLEW...");
    rendering::Context::InitExtensions();
    CheckDrawing();
    ApplyVSync();
    AdoptParams(params);
    CheckAlpha();
    LoadResources();
    gui::GUI::Instance().Resize(params.m_resolution.x, params.m_resolution.y);
    AddScreenshotCommand();
    m_vSync->CalcValue();  // a saved setting has been read before there was a context to apply it to
    util::Redraw::Request();
    Log(logging::Info, "Window created.");
}

// The library looks at its start whether it is to stretch. There is no way back: of that it would keep the
// old frame buffer and show it.
void Subsystem::StartStretching() {
    Log(logging::Trace, "Restarting video");
    m_stretches = true;
    SetStretching(m_stretches);
    const ScopedDisplay display;
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) < 0) {
        THROW(std::runtime_error, String("Couldn't restart SDL's video: ") + SDL_GetError());
    }
    CatchDroppedFiles();
    CatchTerminationSignals();
    SetIcon();
    ShowTitle();
}

void Subsystem::SetVideoMode(const WindowParams& params) {
    Log(logging::Trace, "Setting up SDL");
    SetGLAttributes(params);
    Log(logging::Trace, "Setting video mode");
    const math::Vec2i size = params.m_resolution;
    if (SDL_SetVideoMode(size.x, size.y, 0, GetVideoFlags(params)) == nullptr) {
        THROW(std::runtime_error, String("Couldn't set video mode, SDL-error: ") + SDL_GetError());
    }
}

// Before the new parameters are stored: a changed vSync among them reaches the driver with the next window,
// while the attribute's own value is applied at the end of each creation.
void Subsystem::ApplyVSync() {
    Log(logging::Trace, "Setting vsync");
    if (rendering::Context::Exists() && HasSwapControl()) SetSwapInterval(m_windowParams.m_vSync);
}

void Subsystem::AdoptParams(const WindowParams& params) {
    m_windowParams = m_wantedParams = params;
    Log(logging::Trace, "Setting viewport");
    rendering::Context::SetViewport(params.m_resolution.x, params.m_resolution.y);
}

void Subsystem::CheckAlpha() {
    Log(logging::Trace, "Checking for alpha framebuffer");
    int bits = 0;
    const bool known = SDL_GL_GetAttribute(SDL_GL_ALPHA_SIZE, &bits) == 0;
    if (!known) {
        Log(logging::Warning, "You'r computer won't let me query the alpha bit depth");
    } else if (bits != ALPHA_BITS && !rendering::HasTargets()) {
        Log(logging::Warning,
            "Your computer doesn't support alpha framebuffers; water may not be rendered correctly.");
    }
    rendering::Context::SetHasAlpha(known && bits == ALPHA_BITS);
}

void Subsystem::LoadResources() {
    Log(logging::Trace, "Loading all resources...");
    ResourceManager::Instance().LoadAll(false);
    Log(logging::Trace, "Done loading resources.");
    gui::Input::Instance().ShowCursor(!gui::GUI::Instance().HasCursor());
}

void Subsystem::AddScreenshotCommand() {
    if (m_commandsRegistered) return;
    m_commandsRegistered = true;
    AddCmd("screenshot", [] {
        const String prefix = util::FileSystem::Instance().GetScreenshotsDir() + "vexa";
        rendering::Renderer::Instance().Screenshot(prefix);
    });
}

void Subsystem::SetFullscreen(bool fullscreen) {
    WindowParams params = m_windowParams;
    params.m_fullscreen = fullscreen;
    CreateWindow(params);
}

void Subsystem::OnInputEvent(gui::InputEvent& event) {
    const SDL_Event& sdlEvent = event.GetEvent();
    if (sdlEvent.type == SDL_QUIT) {
        Quit();
        event.m_handled = true;
    } else if (sdlEvent.type == SDL_VIDEORESIZE) {
        event.m_handled = true;
        WindowParams params = m_windowParams;
        params.m_resolution = ClampResolution({sdlEvent.resize.w, sdlEvent.resize.h});
        if (params.m_resolution != m_windowParams.m_resolution) CreateWindow(params);
    }
}

bool Subsystem::GetVSync() const {
    return rendering::Context::Exists() && HasSwapControl() && GetSwapInterval();
}

// What can be read back decides what the setting says.
void Subsystem::SetVSync(const bool& enabled) {
    if (rendering::Context::Exists()) SetSwapInterval(enabled);
    m_windowParams.m_vSync = m_wantedParams.m_vSync = GetVSync();
}

}  // namespace core
