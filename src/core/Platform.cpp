#include "core/Platform.h"

#include <SDL/SDL.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <utility>

#include "input/Sdl2.h"
#include "logging/Log.h"

namespace core {

namespace {

// Mirrors of SDL 2's SDL_MessageBoxButtonData and SDL_MessageBoxData, whose header would clash.
struct MessageBoxButton {
    uint32_t m_flags;
    int m_id;
    const char* m_text;
};
struct MessageBox {
    uint32_t m_flags;
    void* m_window;
    const char* m_title;
    const char* m_message;
    int m_numButtons;
    const MessageBoxButton* m_buttons;
    const void* m_colors;
};
constexpr uint32_t INFORMATION_ICON = 0x40;
constexpr uint32_t DEFAULT_BUTTON = 1;

// The beginning of SDL 2's SDL_DropEvent.
struct DropEvent {
    uint32_t m_type;
    uint32_t m_time;
    char* m_file;  // the receiver's to free, with SDL 2's own function
};
constexpr uint32_t FILE_DROPPED = 0x1000;

// Sees each event of SDL 2 before the 1.2 library does, which knows of no drop.
using EventFilter = int(void* data, void* event);
EventFilter* s_innerFilter = nullptr;
util::StringList& GetDropped() {
    static util::StringList& s_dropped = *new util::StringList;  // abandoned at exit
    return s_dropped;
}

int TakeDrop(void* data, void* event) {
    constexpr int TAKE_OUT = 0, PASS_ON = 1;
    const auto& drop = *static_cast<const DropEvent*>(event);
    if (drop.m_type != FILE_DROPPED) return s_innerFilter ? s_innerFilter(data, event) : PASS_ON;
    if (drop.m_file == nullptr) return TAKE_OUT;
    GetDropped().push_back(drop.m_file);
    if (const auto release = gui::FindSdl2<void(void*)>("SDL_free")) release(drop.m_file);
    return TAKE_OUT;
}

constexpr int TERMINATION_SIGNALS[] = {SIGTERM, SIGINT, SIGHUP};
volatile std::sig_atomic_t s_terminationRequested = 0;

void NoteTermination(int) {
    s_terminationRequested = 1;
}

void SetSignalHandlers(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : TERMINATION_SIGNALS) sigaction(signal, &action, nullptr);
}

// The video driver that the library has started; empty before that.
String GetVideoDriver() {
    char name[32] = "";
    SDL_VideoDriverName(name, sizeof name);
    return name;
}

bool IsInvisible(const String& driver) {
    return driver == "offscreen" || driver == "dummy";
}

}  // namespace

bool ShowMessageBox(const String& caption, const String& text) {
    const auto show = gui::FindSdl2<int(const MessageBox*, int*)>("SDL_ShowMessageBox");
    if (show == nullptr || IsInvisible(GetVideoDriver())) return false;
    enum { OK, CANCEL };
    const MessageBoxButton buttons[] = {{DEFAULT_BUTTON, OK, "OK"}, {0, CANCEL, "Cancel"}};
    const MessageBox box = {INFORMATION_ICON, nullptr, caption.c_str(), text.c_str(), 2, buttons, nullptr};
    int pressed = OK;
    SetSignalHandlers(SIG_DFL);
    const bool shown = show(&box, &pressed) == 0;
    return shown && pressed == CANCEL;
}

bool ShowMsg(const String& caption, const String& text) {
    std::cerr << caption << ": " << text << std::endl;
    Log(logging::Error, caption + ": " + text);
    return ShowMessageBox(caption, text + "\nPress cancel to debug");
}

bool HasDisplay() {
    return !IsInvisible(GetVideoDriver()) || std::getenv("SDL_VIDEODRIVER") != nullptr;
}

math::Vec2i GetDesktopSize() {
    const SDL_VideoInfo* const info = SDL_GetVideoInfo();
    if (info == nullptr || info->current_w <= 0 || info->current_h <= 0) return {0, 0};
    return {info->current_w, info->current_h};
}

float GetDisplayDPI() {
    constexpr float LEAST = 60, MOST = 600;  // beyond, a screen tells nonsense, as projectors do
    const auto get = gui::FindSdl2<int(int, float*, float*, float*)>("SDL_GetDisplayDPI");
    float diagonal = 0, horizontal = 0, vertical = 0;
    if (get == nullptr || get(0, &diagonal, &horizontal, &vertical) != 0) return 0;
    return horizontal >= LEAST && horizontal <= MOST ? horizontal : 0;
}

// SDL 2 counts who uses a part of it.
ScopedDisplay::ScopedDisplay() {
    const auto init = gui::FindSdl2<int(uint32_t)>("SDL_InitSubSystem");
    if (init != nullptr) init(SDL_INIT_VIDEO);
}

ScopedDisplay::~ScopedDisplay() {
    const auto quit = gui::FindSdl2<void(uint32_t)>("SDL_QuitSubSystem");
    if (quit != nullptr) quit(SDL_INIT_VIDEO);
}

bool HasSwapControl() {
    return gui::FindSdl2<int(int)>("SDL_GL_SetSwapInterval") != nullptr;
}

bool GetSwapInterval() {
    const auto get = gui::FindSdl2<int()>("SDL_GL_GetSwapInterval");
    return get != nullptr && get() != 0;
}

void SetSwapInterval(bool enabled) {
    const auto set = gui::FindSdl2<int(int)>("SDL_GL_SetSwapInterval");
    if (set != nullptr) set(enabled ? 1 : 0);
}

void SetStretching(bool stretching) {
    constexpr const char* SETTING = "SDL12COMPAT_OPENGL_SCALING";
    static const bool s_isUsers = std::getenv(SETTING) != nullptr;
    if (s_isUsers) return;
    const char* const value = stretching ? "1" : "0";
    const char* const present = std::getenv(SETTING);
    if (present == nullptr || std::strcmp(present, value) != 0) setenv(SETTING, value, 1);
}

void CatchDroppedFiles() {
    const auto get = gui::FindSdl2<int(EventFilter**, void**)>("SDL_GetEventFilter");
    const auto set = gui::FindSdl2<void(EventFilter*, void*)>("SDL_SetEventFilter");
    if (get == nullptr || set == nullptr) return;
    EventFilter* present = nullptr;
    void* data = nullptr;
    get(&present, &data);
    if (present == &TakeDrop) return;
    s_innerFilter = present;
    set(&TakeDrop, data);
}

util::StringList TakeDroppedFiles() {
    return std::exchange(GetDropped(), {});
}

void CatchTerminationSignals() {
    SetSignalHandlers(&NoteTermination);
}

bool TakeTerminationRequest() {
    const bool requested = s_terminationRequested != 0;
    s_terminationRequested = 0;
    return requested;
}

}  // namespace core
