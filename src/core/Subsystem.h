#pragma once

#include <exception>
#include <functional>

#include "core/WindowParams.h"
#include "input/InputListener.h"
#include "input/WindowHost.h"
#include "rendering/KeptFrame.h"
#include "script/Attributes.h"
#include "util/Singleton.h"

namespace core {

// The process's relation to the machine: the library's start, the window with its GL context, the frame
// loop, and the end of all that. In scripts "System". The frame loop is the program's only scheduler.
//
// Life: Instance() starts logging, SDL and gui::Input. CreateWindow opens the window, and may be called any
// number of times after that: the user's resizing and `System.recreateWindow` end there too. Every call
// releases all GL resources first and reloads them at its end, so nobody holds a GL object directly. Run
// returns after Quit, the `exit` command, the window's close button or a termination signal. Destroy() takes
// down the services that need an orderly end; the others are abandoned.
class Subsystem : public gui::InputListener, public gui::WindowHost, public util::Singleton<Subsystem> {
  public:
    Subsystem();
    ~Subsystem() noexcept(false) override;

    // A failure is a std::runtime_error; then the window is made once more as it was before. Where that
    // fails too, the failure of the second attempt ends the main loop. A first window that cannot be had as
    // asked for is made with the defaults instead.
    void CreateWindow(WindowParams params);

    void Run();

    void OnInputEvent(gui::InputEvent& event) override;

    void Quit() override { m_quit = true; }
    bool IsFullscreen() const override { return m_windowParams.m_fullscreen; }
    void SetFullscreen(bool fullscreen) override;
    void RecreateWindow() override { CreateWindow(m_wantedParams); }
    void SetDocumentName(const String& name) override;
    double GetFPS() const override { return m_fps; }

    // Who takes the path of a file that the user has dropped on the window.
    void SetOnFileDropped(const std::function<void(const String&)>& onFile) { m_onFileDropped = onFile; }

    // The program's part of the window's title.
    void SetCaption(const String& caption);

    const WindowParams& GetWantedParams() const { return m_wantedParams; }
    // For a first run: what the window is and what it is to be.
    void SetParams(const WindowParams& params) { m_windowParams = m_wantedParams = params; }

  private:
    // ---- construction
    void AddLoggers();
    void StartSDL();
    void StartInput();
    void SetIcon();
    void ShowTitle() const;
    void AddCommands();

    // ---- WindowCreation.cpp
    void BuildWindow(WindowParams params);
    void RestoreWindow(const WindowParams& params);
    void StartStretching();
    void SetVideoMode(const WindowParams& params);
    void ApplyVSync();
    void AdoptParams(const WindowParams& params);
    void CheckAlpha();
    void LoadResources();
    void AddScreenshotCommand();
    bool GetVSync() const;
    void SetVSync(const bool& enabled);

    // ---- FrameLoop.cpp
    void PrepareLoop();
    void RunFrame();
    void PumpEvents();
    void HandleDroppedFiles();
    void FlushCallbackSets();
    void CollectHandles();
    void UpdateParser();
    void UpdateInterpolators();
    void UpdateGUI(double dt);
    bool NeedsDrawing(double now);
    void ShowAgain(double now);
    void Rest();
    void Draw();
    void DrawPicture();
    void Clear();
    void SwapBuffers();
    void MeasureFrameRate();
    void UpdateLogger();
    void LimitFrameRate(double dt);
    void RethrowLostWindow();

    // Settings of `System`.
    script::AttribPtr<math::Vec4> m_clearColor;  // behind everything
    script::AttribPtr<float> m_minFPS;           // 1/s; below it the simulation slows down instead
    script::AttribPtr<float> m_maxFPS;           // 1/s, at least 1
    script::AttribGetSetPtr<bool> m_vSync;

    WindowParams m_windowParams;  // of the window that exists
    WindowParams m_wantedParams;  // what scripts edit and the next creation uses; equal after each creation

    bool m_stretches = false;  // from now on the library stretches the picture over the window

    String m_caption;
    String m_title;  // of the window
    std::function<void(const String&)> m_onFileDropped;
    bool m_quit = false;                // the loop is to end
    bool m_commandsRegistered = false;  // the commands that need a window
    int m_framesSinceFlush = 0;
    int m_framesToDraw = 0;
    rendering::KeptFrame m_keptFrame;  // while nothing changes
    double m_lastChange = 0;           // s; of the picture
    double m_lastWholeFrame = 0;       // s; when all was drawn anew
    double m_lastDrawn = 0;            // s
    double m_previousTime = 0;         // s, of the last frame
    int m_frameCount = 0;              // since m_fpsStart
    double m_fpsStart = 0;             // s
    double m_fps = 0;                  // 1/s
    std::exception_ptr m_lostWindow;   // why there is no window any more
};

}  // namespace core
