#include "Fuzz.h"

// Any text is cut, parsed or refused, and what was parsed prints to a text that parses to the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static script::Parser& s_parser = fuzz::MakeQuietParser();
    const String text(data, data + size);
    if (text.find("\xEF\xBB\xBF") != String::npos) return 0;  // skipped at the start of a text only
    try {
        const script::CodeBlockPtr code = s_parser.ParseGuest(text);
        const String printed = code ? code->ToCode() : String();
        const script::CodeBlockPtr again = s_parser.ParseGuest(printed);
        if (again) fuzz::Require(again->ToCode() == printed, "printed text stands still", printed);
    } catch (const std::exception&) {
        // What has an empty slot, or is too deep, cannot be printed.
    }
    fuzz::Tidy();
    return 0;
}
