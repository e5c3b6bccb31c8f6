#pragma once

#include <deque>

#include "gui/CommandHistory.h"
#include "gui/Component.h"
#include "input/TextInputer.h"
#include "rendering/KeptPicture.h"
#include "script/Attributes.h"

namespace gui {

// The drop-down console: shows the log, takes a line of script at a time and prints the answer. It slides
// down from the window's upper edge at F11, over everything else, and while it is open every key is its own;
// the mouse is so over its rectangle only. In scripts "GUI.Console".
class Console : public Component {
  public:
    // What a line is, which decides its colour.
    enum class Tone { Plain, Command, Answer, Warning, Error };

    Console();

    // At each line feed a new line. A command is put into the history, run, and followed by its answer.
    void AddLine(const String& text, bool isCommand);
    void AddLogLine(const String& text);  // as the logger writes it, in any encoding
    void Toggle();                        // a movement under way turns round
    void Clear();
    bool IsOpen() const { return m_open; }

    struct Line {
        String text;
        Tone tone;
        float mark =
            -1;  // GUI units from the left: a caret stands there, and nothing else in the line; -1: none
    };
    const std::deque<Line>& GetLines() const { return m_lines; }
    const String& GetCommandLine() const { return m_editor->GetText(); }
    CommandHistory& GetHistory() { return m_history; }

    void Update(float dt) override;
    void Draw() override;
    void DrawComp() override;
    void OnKeyEvent(KeyEvent& event) override;
    // A command may press what lies behind the console.
    bool TakesMouse() const override { return IsVisible() && !m_running; }
    bool IsVisible() const override { return GetOpenness() > 0; }
    const char* GetKind() const override { return "Console"; }

  private:
    void AddLines(const String& text, Tone tone);
    void Run(const String& command);
    void MarkFailure(size_t commandLine);

    void HandleOpenKey(KeyEvent& event);
    bool HandleScrollKey(const KeyEvent& event);
    bool HandleHistoryKey(int key);
    void HandleMouse(KeyEvent& event);
    void Enter();
    void CompleteCommand();
    void Scroll(int lines);

    float GetOpenness() const;  // 0 closed to 1 open
    float GetFullHeight() const;
    int GetPage() const;  // lines
    bool IsCursorShown() const;
    void DrawBackground() const;
    float DrawCommandLine(float bottom) const;
    void DrawLines(float bottom) const;
    TextFormat GetFormat(Tone tone) const;

    const script::AttribPtr<bool> m_fade;         // shows and hides by fading instead of sliding
    const script::AttribPtr<bool> m_scroll;       // moves at all when it opens and closes
    const script::AttribPtr<float> m_delay;       // seconds that the movement takes
    const script::AttribPtr<float> m_screenSize;  // fraction of the screen's height
    const script::AttribPtr<math::Vec4> m_background;

    std::deque<Line> m_lines;
    CommandHistory m_history;
    const TextInputerPtr m_editor;
    String m_lastAnswer;
    int m_scrollOffset = 0;    // lines that the view stands above the end
    double m_toggleTime = -1;  // seconds; when the present movement began
    double m_lastKeyTime = 0;  // seconds; the cursor blinks from here
    bool m_open = false;
    bool m_running = false;  // a command
    bool m_cursorShown = false;
    float m_openness = 0;  // as of the last frame
    rendering::KeptPicture m_picture;
};
using ConsolePtr = util::SharedPtr<Console>;

}  // namespace gui
