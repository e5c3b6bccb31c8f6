#pragma once

#include "gui/Console.h"
#include "gui/Notices.h"
#include "rendering/Texture.h"
#include "script/Attributes.h"
#include "util/Singleton.h"

namespace gui {

// Owner of the component tree and of what it is seen through: the scale, the projection, the opaqueness,
// the mouse cursor, the console, the notices, the profiler's text. In scripts "GUI".
//
// Life: made after gui::Input, before the window; Resize when the window has its size; then once a frame
// Update and Draw. Draw without a GL context does nothing. Below the root hang the application, the
// console, the notices and the tool tip; windows hang below the application.
class GUI : public script::Reflected, public util::Singleton<GUI> {
  public:
    GUI();

    const ComponentPtr& GetRoot() const { return m_root; }

    // The window's size in pixels. Lays the tree out anew.
    void Resize(int width, int height);

    void Update(float dt);  // seconds
    void Draw();            // the whole tree, cursor and profiler's text, over what is there; no swap

    float GetScale() const { return m_scale->Get(); }  // pixels per GUI unit, at least 0.25
    void SetScale(float scale);
    math::Vec2 GetSize() const;  // of the window in GUI units
    math::Vec2 ToGUI(math::Vec2 pixels) const { return pixels / GetScale(); }

    // Whether the cursor's picture is there; else the window system's cursor has to stay visible.
    bool HasCursor();

    const ConsolePtr& GetConsole() const { return m_console; }
    const NoticesPtr& GetNotices() const { return m_notices; }
    // Warnings become notices from the first frame on. Those of before are the machine's own, unless they
    // come while the user's files are being read.
    void SetReadsUserFiles(bool reads) { m_readsUserFiles = reads; }

    // The window that the program lives in; null in tests and tools. Outlives this object.
    void SetWindowHost(WindowHost* host) { m_windowHost = host; }
    WindowHost* GetWindowHost() const { return m_windowHost; }

  private:
    void AddChildren();
    void InstallLogSink();
    void TakeLogLine(const String& line);  // warnings, errors, news for the user
    void ShowEarlyNotices();
    void LoadCursor();
    void OnScaleChange();
    void PushSettings();  // to those who obey them
    void ResizeRoot();
    void DrawTree();
    void DrawCursor();
    void DrawProfile();

    script::AttribPtr<float> m_clickTolerance;      // GUI units of movement that turn a press into a drag
    script::AttribPtr<float> m_clickTimeTolerance;  // seconds of holding that do the same
    script::AttribPtr<float> m_scale;               // pixels per GUI unit
    script::AttribPtr<float> m_opaqueness;          // alpha of the whole GUI

    math::Vec2i m_windowSize{1024, 768};  // pixels; a guess until the first Resize
    ComponentPtr m_root;
    rendering::TextureMentorPtr m_cursor;
    bool m_cursorLoaded = false;  // the picture itself, not what stands in for it
    ConsolePtr m_console;
    NoticesPtr m_notices;
    bool m_hasDrawn = false;
    bool m_readsUserFiles = false;
    std::vector<String> m_earlyNotices;  // until the first frame
    WindowHost* m_windowHost = nullptr;  // not owned
};

}  // namespace gui
