#include <cmath>

#include "Fuzz.h"
#include "gui/TextFormat.h"
#include "util/FileWrapper.h"

namespace {

void WriteFile(const String& path, const String& bytes) {
    util::FILEWrapper file(path, "wb");
    if (!bytes.empty()) file.Write(bytes.data(), bytes.size());
}

// Every byte of the text stands in one line, or at the break between two, and has a place.
void CheckText(const gui::TextFormat& format, const String& text) {
    const gui::FormattedText formatted = gui::FormatText(format, text);
    size_t end = 0;
    for (const gui::TextLine& line : formatted.m_lines) {
        fuzz::Require(line.m_begin >= end && line.m_begin <= end + 1 && line.m_end >= line.m_begin,
                      "lines in order");
        end = line.m_end;
    }
    fuzz::Require(end <= text.size() && text.size() <= end + 1, "the whole text");
    for (size_t i = 0; i <= text.size(); ++i) {
        fuzz::Require(std::isfinite(formatted.GetCharBounds(i).min.x), "a place");
    }
}

}  // namespace

// Any bytes as widths and sheet are refused or make a font, in which any text can be set, at any width.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    logging::Logger::Instance();
    static const String& s_base = *new String(fuzz::MakeFolder() + "any");
    const String bytes(data, data + size);
    const size_t numWidths = std::min<size_t>(size, gui::Font::NUM_GLYPHS);
    const size_t numText = numWidths < size ? std::min<size_t>(data[numWidths], size - numWidths) : 0;
    WriteFile(s_base + ".dat", bytes.substr(0, numWidths));
    WriteFile(s_base + ".raw", bytes.substr(numWidths + numText));
    try {
        const gui::FontPtr font = new gui::Font(s_base + ".dat", s_base + ".raw");
        gui::TextFormat format;
        format.m_font = new gui::FontMentor([font] { return new gui::Font(*font); });
        CheckText(format, bytes.substr(numWidths, numText));
        format.m_maxWidth = static_cast<float>(data[0]);
        CheckText(format, bytes.substr(numWidths, numText));
    } catch (const std::exception&) {
    }
    logging::Logger::Instance().Update();
    util::Pointee::SweepHandles();
    return 0;
}
