#pragma once

#include "util/String.h"

namespace script {

// Collects printed text. One growing buffer for a whole tree, so that the cost of printing follows the
// length of the text and not its depth. Raises ScriptException with "Text too long" beyond MAX_CODE_SIZE.
class CodeWriter {
  public:
    CodeWriter& Append(const String& text) { return Append(text.data(), text.size()); }
    CodeWriter& Append(const char* text);

    // A name of operator characters may end in a quote, which is told from a string's only here.
    CodeWriter& AppendName(const String& name);
    // With a blank where a name of operator characters would join the separator, or the point in front of it.
    CodeWriter& AppendSeparator(const char* separator);
    CodeWriter& AppendMember(const String& name);

    size_t GetSize() const { return m_text.size(); }
    bool HoldsNewline(size_t from) const { return m_text.find('\n', from) != String::npos; }
    void Cut(size_t size) { m_text.resize(size); }

    // Sets what stands from `from` on apart as the body of a function: a newline before and behind, four
    // blanks behind each newline inside but for one at the very end and for those in strings.
    void SetApart(size_t from);

    String Take() { return std::move(m_text); }

  private:
    CodeWriter& Append(const char* text, size_t size);

    String m_text;
    size_t m_nameEnd = 0;  // of the name written last
};

// Writes the elements of a range with `separator` between those that give any text. Dereferences each
// pointer, so a null element raises the null pointer failure.
template <class Range>
void WriteJoined(CodeWriter& out, const Range& elements, const char* separator) {
    size_t end = out.GetSize();
    for (const auto& element : elements) {
        const size_t begin = out.GetSize();
        element->WriteCode(out);
        if (out.GetSize() == begin) continue;
        end = out.GetSize();
        out.AppendSeparator(separator);
    }
    out.Cut(end);
}

// As the console shows a number: six significant digits, "+inf", "-inf".
String DoubleToText(double value);
// As a number is saved: it reads back to the same bits, but for the tail of a number that is a float's, for
// which sixteen digits are enough. There is always a "." in it.
String DoubleToCode(double value);
// As a string is saved: in quotes, with a backslash before quotes and backslashes inside.
String StringToCode(const String& text);

}  // namespace script
