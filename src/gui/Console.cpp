#include "gui/Console.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cmath>

#include "gui/Caret.h"
#include "input/Clipboard.h"
#include "input/Key.h"
#include "logging/Logger.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "script/Parser.h"
#include "util/Clock.h"
#include "util/Encoding.h"
#include "util/Redraw.h"

namespace gui {
namespace {

using math::Vec2;
using math::Vec4;

const String CMD_START = "> ";
constexpr size_t MAX_LINES = 10000;
constexpr float MARGIN = 8;  // GUI units round the text
constexpr int WHEEL_LINES = 3;
constexpr int CONSOLE_PRIORITY = EDITOR_PRIORITY;

// By Tone.
constexpr Vec4 TONE_COLORS[] = {
    {0.78f, 0.8f, 0.84f, 1}, {1, 1, 1, 1}, {0.6f, 0.95f, 0.7f, 1}, {1, 0.82f, 0.35f, 1}, {1, 0.5f, 0.45f, 1}};

// F11, and the key left of "1" on most keyboards, by code or by the character that it types.
bool IsToggleKey(const KeyEvent& event) {
    constexpr int F11 = Key::F1 + 10, SECTION = 167, ONE_HALF = 189, BACKQUOTE = 96;
    return event.m_key == F11 || event.m_key == SECTION || event.m_key == ONE_HALF ||
           event.m_key == BACKQUOTE || static_cast<unsigned char>(event.m_character) == SECTION;
}

bool IsMouseKey(int key) {
    return key >= Key::LeftMouse;
}

}  // namespace

Console::Console()
    : Component("Console"),
      m_fade(script::DeclareAttrib(*this, "fade", false)),
      m_scroll(script::DeclareAttrib(*this, "scroll", true)),
      m_delay(script::DeclareAttrib(*this, "delay", 0.3f)),
      m_screenSize(script::DeclareAttrib(*this, "screenSize", 0.35f)),
      m_background(script::DeclareAttrib(*this, "color", Vec4(0.1f, 0.1f, 0.1f, 0.8f))),
      m_editor(new TextInputer) {
    SetPriority(CONSOLE_PRIORITY);
    AddCmd("Clear", this, &Console::Clear);
}

// ---- lines -------------------------------------------------------------------------------------------

void Console::AddLine(const String& text, bool isCommand) {
    if (!isCommand) return AddLines(text, Tone::Plain);
    AddLines(text, Tone::Command);
    const auto height = static_cast<size_t>(1 + std::count(text.begin(), text.end(), '\n'));
    const size_t commandLine = m_lines.size() - std::min(height, m_lines.size());
    Run(text);
    MarkFailure(commandLine);
}

void Console::AddLogLine(const String& text) {
    const bool isError = boost::algorithm::starts_with(text, logging::ERROR_PREFIX);
    const bool isWarning = boost::algorithm::starts_with(text, logging::WARNING_PREFIX);
    AddLines(util::ToShown(text), isError ? Tone::Error : isWarning ? Tone::Warning : Tone::Plain);
}

void Console::AddLines(const String& text, Tone tone) {
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const String piece = text.substr(begin, end - begin);
        m_lines.push_back({tone == Tone::Command ? CMD_START + piece : piece, tone});
        begin = end + 1;
    }
    while (m_lines.size() > MAX_LINES) m_lines.pop_front();
    if (m_open) util::Redraw::Request();
    m_scrollOffset = 0;
    m_history.StopWalking();
}

// What fails is told through the log, whose lines arrive here too.
void Console::Run(const String& command) {
    m_history.Add(command);
    Log(logging::Trace, CMD_START + command);
    m_running = true;
    const String answer = script::Parser::Instance().ExecuteToString(command);
    m_running = false;
    if (answer.empty()) return;
    Log(logging::Trace, answer);
    m_lastAnswer = answer;
    AddLines(answer, Tone::Answer);
}

// A caret under the place where the command first failed, between the command and what was said of it.
void Console::MarkFailure(size_t commandLine) {
    for (const script::Failure& failure : script::Parser::Instance().GetFailures()) {
        const size_t place = commandLine + failure.place.line;
        if (!failure.place.IsKnown() || place > m_lines.size()) continue;
        const FormattedText command = FormatText(GetFormat(Tone::Command), m_lines[place - 1].text);
        const size_t index = CMD_START.size() + failure.place.column - 1;
        const float x = command.GetCharBounds(std::min(index, command.m_text.size())).min.x;
        m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(place), {"^", Tone::Warning, x});
        return;
    }
}

void Console::Clear() {
    m_lines.clear();
    m_scrollOffset = 0;
}

// ---- opening -----------------------------------------------------------------------------------------

void Console::Toggle() {
    m_open = !m_open;
    const double now = util::Clock::Now(), age = now - m_toggleTime, delay = m_delay->Get();
    m_toggleTime = age >= delay ? now : now - (delay - age);
    m_lastKeyTime = now;
    if (m_open || m_editor->GetText().empty()) return;
    m_history.Add(m_editor->GetText());
    m_editor->SetText("");
}

float Console::GetOpenness() const {
    const double delay = m_delay->Get();
    const double age = util::Clock::Now() - m_toggleTime;
    const bool isMoving = m_scroll->Get() && age < delay;
    const float t = isMoving ? static_cast<float>(age / delay) : 1;
    return std::clamp(m_open ? t : 1 - t, 0.0f, 1.0f);
}

float Console::GetFullHeight() const {
    const Component* const parent = GetParent();
    return parent ? std::floor(m_screenSize->Get() * parent->GetSize().y) : 0;
}

void Console::Update(float dt) {
    Component::Update(dt);
    const Component* const parent = GetParent();
    if (!parent) return;
    const float t = GetOpenness(), full = GetFullHeight();
    const float height = m_fade->Get() ? (t > 0 ? full : 0) : full * t;
    SetSize(parent->GetSize().x, height);
    if (t != m_openness || IsCursorShown() != m_cursorShown) util::Redraw::Request();
    m_openness = t;
    m_cursorShown = IsCursorShown();
}

// ---- keys --------------------------------------------------------------------------------------------

void Console::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (!event.m_pressed || event.m_handled) return;
    if (IsMouseKey(event.m_key)) return HandleMouse(event);
    m_lastKeyTime = util::Clock::Now();
    if (IsToggleKey(event)) {
        if (!event.m_repeated) Toggle();
        event.m_handled = true;
    } else if (m_open && event.m_key == Key::Escape) {
        Toggle();
        event.m_handled = true;
    } else if (m_open) {
        HandleOpenKey(event);
        event.m_handled = true;
    }
}

void Console::HandleMouse(KeyEvent& event) {
    if (!TakesMouse() || !IsHit(event.m_position)) return;
    event.m_handled = true;
    if (event.m_key == Key::ScrollUp) Scroll(WHEEL_LINES);
    if (event.m_key == Key::ScrollDown) Scroll(-WHEEL_LINES);
}

void Console::HandleOpenKey(KeyEvent& event) {
    const int key = event.m_key;
    if (key == Key::Return || key == Key::KeypadEnter) return Enter();
    if (key == Key::Tab && !event.m_alt) return CompleteCommand();
    if (key == 'c' && event.m_ctrl) return SetClipboardText(m_lastAnswer);
    if (HandleScrollKey(event) || HandleHistoryKey(key)) return;
    m_editor->Edit(event);
}

bool Console::HandleScrollKey(const KeyEvent& event) {
    switch (event.m_key) {
        case Key::PageUp:
            Scroll(GetPage());
            return true;
        case Key::PageDown:
            Scroll(-GetPage());
            return true;
        case Key::Home:
            if (event.m_ctrl) Scroll(static_cast<int>(m_lines.size()));
            return event.m_ctrl;
        case Key::End:
            if (event.m_ctrl) m_scrollOffset = 0;
            return event.m_ctrl;
        default:
            return false;
    }
}

bool Console::HandleHistoryKey(int key) {
    if (key != Key::Up && key != Key::Down) return false;
    String line = m_editor->GetText();
    const bool changed = key == Key::Up ? m_history.GoBack(line) : m_history.GoForward(line);
    if (!changed) return true;
    m_editor->SetText(line);
    m_scrollOffset = 0;
    return true;
}

void Console::Enter() {
    const String command = m_editor->GetText();
    m_editor->SetText("");
    m_scrollOffset = 0;
    if (!command.empty()) AddLine(command, true);
}

// What is in front of the cursor grows as far as all candidates agree.
void Console::CompleteCommand() {
    const String text = m_editor->GetText(), behind = text.substr(m_editor->GetCursor());
    String front = text.substr(0, m_editor->GetCursor());
    const std::vector<String> candidates = script::Parser::Instance().AutoComplete(front);
    m_editor->SetText(front + behind);
    m_editor->SetCursor(front.size());
    if (candidates.size() < 2) return;
    AddLines(CMD_START + front + behind, Tone::Plain);
    String all;
    for (const String& candidate : candidates) all += (all.empty() ? "" : "   ") + candidate;
    AddLines(all, Tone::Plain);
}

void Console::Scroll(int lines) {
    const int last = std::max(static_cast<int>(m_lines.size()) - 1, 0);
    m_scrollOffset = std::clamp(m_scrollOffset + lines, 0, last);
}

// ---- drawing -----------------------------------------------------------------------------------------

int Console::GetPage() const {
    const float lineHeight = GetTextFormat().m_lineHeight;
    return std::max(1, static_cast<int>((GetFullHeight() - 2 * MARGIN) / lineHeight) - 1);
}

TextFormat Console::GetFormat(Tone tone) const {
    TextFormat format = GetTextFormat();
    format.m_color = TONE_COLORS[static_cast<int>(tone)];
    format.m_maxWidth = GetSize().x - 2 * MARGIN;
    return format;
}

void Console::Draw() {
    if (!IsVisible()) return m_picture.Forget();
    m_picture.Draw({{0, 0}, GetSize()}, [this] { Component::Draw(); });
}

void Console::DrawComp() {
    const float t = GetOpenness(), height = GetSize().y;
    if (t <= 0 || height <= 0) return;
    if (m_fade->Get()) rendering::Renderer::Instance().MultColor({1, 1, 1, t});
    DrawBackground();
    DrawLines(DrawCommandLine(height - MARGIN));
}

void Console::DrawBackground() const {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    const rendering::ScopedColor kept;
    renderer.MultColor(m_background->Get());
    renderer.DrawQuad({0, 0}, GetSize());
}

bool Console::IsCursorShown() const {
    return m_open && IsCaretLit(m_lastKeyTime);
}

// The result is the upper edge of the line.
float Console::DrawCommandLine(float bottom) const {
    const TextFormat format = GetFormat(Tone::Command);
    const FormattedText text = FormatText(format, CMD_START + m_editor->GetText());
    const float top = bottom - text.m_height;
    DrawText(format, MARGIN, top, text);
    if (IsCursorShown()) {
        const FormattedText cursor = FormatText(format, "_");
        const math::BoundingBox2f box = text.GetCharBounds(m_editor->GetCursor() + CMD_START.size());
        DrawText(format, std::floor(MARGIN + box.GetCenter().x - cursor.m_width / 2), top + box.min.y,
                 cursor);
    }
    return top;
}

// Upward from the end, or from where the user has scrolled to, as far as there is room.
void Console::DrawLines(float bottom) const {
    for (size_t i = m_lines.size() - std::min<size_t>(m_scrollOffset, m_lines.size());
         i-- > 0 && bottom > 0;) {
        const Line& line = m_lines[i];
        const TextFormat format = GetFormat(line.tone);
        const FormattedText text = FormatText(format, line.text);
        bottom -= text.m_height;
        DrawText(format, MARGIN + std::max(line.mark, 0.0f), bottom, text);
    }
}

}  // namespace gui
