#include "input/Clipboard.h"

#include <dlfcn.h>

#include <cstdint>

namespace gui {

namespace {

// SDL 1.2 knows no clipboard, but its compatibility library stands on SDL 2, which does, on all window
// systems. Only a library that is in use already is asked.
String GetPlatformClipboard() {
    void* const library = dlopen("libSDL2-2.0.so.0", RTLD_NOLOAD | RTLD_LAZY);
    if (library == nullptr) return "";
    const auto get = reinterpret_cast<char* (*)()>(dlsym(library, "SDL_GetClipboardText"));
    const auto release = reinterpret_cast<void (*)(void*)>(dlsym(library, "SDL_free"));
    String text;
    if (get != nullptr && release != nullptr) {
        char* const utf8 = get();
        if (utf8 != nullptr) text = utf8;
        release(utf8);
    }
    dlclose(library);
    return text;
}

ClipboardSource s_source = &GetPlatformClipboard;

// The code point that starts at `i`, which moves past it; -1 for a byte that starts none.
int32_t NextCodePoint(const String& text, size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80) return lead;
    const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (more < 0) return -1;
    int32_t code = lead & (0x3F >> more);
    for (int n = 0; n < more; ++n) {
        if (i >= text.size() || (text[i] & 0xC0) != 0x80) return -1;
        code = (code << 6) | (text[i++] & 0x3F);
    }
    return code;
}

}  // namespace

String Utf8FromLatin1(const String& text) {
    String utf8;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xC0 | (byte >> 6));
            utf8 += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return utf8;
}

String Latin1FromUtf8(const String& text) {
    String result;
    for (size_t i = 0; i < text.size();) {
        const int32_t code = NextCodePoint(text, i);
        if (code > 0 && code < 0x100 && code != '\r') result += static_cast<char>(code);
    }
    return result;
}

String GetClipboardText() {
    return Latin1FromUtf8(s_source());
}

void SetClipboardSource(ClipboardSource source) {
    s_source = source != nullptr ? source : &GetPlatformClipboard;
}

}  // namespace gui
