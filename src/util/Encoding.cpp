#include "util/Encoding.h"

#include <cstdint>

namespace util {
namespace {

constexpr int32_t INVALID = -1;

// The code point that starts at `i`, which moves past it, or past one byte that starts none.
int32_t NextCodePoint(const String& text, size_t& i) {
    constexpr int32_t LEAST[] = {0, 0x80, 0x800, 0x10000};  // by the bytes that follow the first
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80) return lead;
    const int more = lead >= 0xF8 ? -1 : lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (more < 0 || i + more > text.size()) return INVALID;
    int32_t code = lead & (0x3F >> more);
    for (int n = 0; n < more; ++n) {
        if ((text[i + n] & 0xC0) != 0x80) return INVALID;
        code = (code << 6) | (text[i + n] & 0x3F);
    }
    if (code < LEAST[more]) return INVALID;
    i += more;
    return code;
}

}  // namespace

String Latin1FromUtf8(const String& text) {
    String result;
    for (size_t i = 0; i < text.size();) {
        const int32_t code = NextCodePoint(text, i);
        if (code == 0 || code == '\r') continue;
        result += code > 0 && code < 0x100 ? static_cast<char>(code) : '?';
    }
    return result;
}

String Utf8FromLatin1(const String& text) {
    String result;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | (code >> 6));
            result += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return result;
}

bool IsUtf8(const String& text) {
    for (size_t i = 0; i < text.size();) {
        if (NextCodePoint(text, i) == INVALID) return false;
    }
    return true;
}

String ToShown(const String& text) {
    return IsUtf8(text) ? Latin1FromUtf8(text) : text;
}

}  // namespace util
