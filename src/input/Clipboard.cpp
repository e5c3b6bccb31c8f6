#include "input/Clipboard.h"

#include "input/Sdl2.h"
#include "util/Encoding.h"

namespace gui {

namespace {

// SDL 1.2 knows no clipboard, SDL 2 does, on all window systems.
String ReadPlatformClipboard() {
    const auto get = FindSdl2<char*()>("SDL_GetClipboardText");
    const auto release = FindSdl2<void(void*)>("SDL_free");
    if (get == nullptr || release == nullptr) return "";
    char* const utf8 = get();
    const String text = utf8 != nullptr ? utf8 : "";
    release(utf8);
    return text;
}

void WritePlatformClipboard(const String& text) {
    const auto set = FindSdl2<int(const char*)>("SDL_SetClipboardText");
    if (set != nullptr) set(text.c_str());
}

constexpr ClipboardAccess PLATFORM{&ReadPlatformClipboard, &WritePlatformClipboard};
ClipboardAccess s_access = PLATFORM;

}  // namespace

String GetClipboardText() {
    return util::Latin1FromUtf8(s_access.m_read());
}

void SetClipboardText(const String& text) {
    s_access.m_write(util::Utf8FromLatin1(text));
}

void SetClipboardAccess(const ClipboardAccess& access) {
    s_access = access.m_read != nullptr ? access : PLATFORM;
}

}  // namespace gui
