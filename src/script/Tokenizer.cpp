#include "script/Tokenizer.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace script {

namespace {

bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsSign(char c) {
    return c == '-' || c == '+';
}
bool IsWordStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool IsSingle(char c) {
    return c != '\0' && std::strchr("{}()[],", c) != nullptr;
}
char Lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

uint16_t s_numTexts = 0;

class Scanner {
  public:
    Scanner(const String& text, SourcePlace& place)
        : m_p(text.data()), m_end(m_p + text.size()), m_place(place) {
        static const char MARK[] = "\xEF\xBB\xBF";
        if (text.compare(0, 3, MARK) == 0) m_p += 3;
        m_placed = m_lineBegin = m_p;
        m_place = {1, 1, ++s_numTexts};
    }

    TokenList Scan(size_t most) {
        for (SkipSpace(); m_p != m_end && m_tokens.size() <= most; SkipSpace()) ScanToken();
        FindPlace();
        return std::move(m_tokens);
    }

  private:
    void ScanToken() {
        FindPlace();
        if (*m_p == '"') return ScanString();
        if (IsWordStart(*m_p)) return ScanWord();
        if (NumberStarts(m_p)) return ScanNumber();
        if (IsSingle(*m_p)) return Emit(m_p, m_p + 1, SymbolToken);
        if (*m_p == '/' && m_p + 1 != m_end && m_p[1] == '/') return SkipComment();
        ScanOperator();
    }

    // The place of the scan, which counts on from where it was last asked for.
    void FindPlace() {
        for (; m_placed != m_p; ++m_placed) {
            if (*m_placed != '\n') continue;
            ++m_place.line;
            m_lineBegin = m_placed + 1;
        }
        constexpr std::ptrdiff_t MAX_COLUMN = UINT16_MAX;
        m_place.column = static_cast<uint16_t>(std::min(m_p - m_lineBegin + 1, MAX_COLUMN));
    }

    void SkipSpace() {
        while (m_p != m_end && IsSpace(*m_p)) ++m_p;
    }
    void SkipComment() {
        while (m_p != m_end && *m_p != '\n') ++m_p;
    }

    void Emit(const char* begin, const char* end, TokenKind kind) {
        m_tokens.push_back({String(begin, end), kind, m_place});
        m_p = end;
    }

    const char* SkipDigits(const char* p) const {
        while (p != m_end && IsDigit(*p)) ++p;
        return p;
    }
    bool IsInf(const char* p) const {
        return m_end - p >= 3 && Lower(p[0]) == 'i' && Lower(p[1]) == 'n' && Lower(p[2]) == 'f';
    }
    bool IsFraction(const char* p) const { return m_end - p >= 2 && p[0] == '.' && IsDigit(p[1]); }

    // Signs in front of a number start belong to one, however many. The answer for a run of signs is kept,
    // so that a text of nothing but signs does not cost the square of its length.
    bool NumberStarts(const char* p) {
        if (p == m_end) return false;
        if (!IsSign(*p)) return IsDigit(*p) || IsInf(p) || IsFraction(p);
        if (p >= m_signsEnd) {
            m_signsEnd = p;
            while (m_signsEnd != m_end && IsSign(*m_signsEnd)) ++m_signsEnd;
            m_numberBehindSigns = NumberStarts(m_signsEnd);
        }
        return m_numberBehindSigns;
    }

    void ScanWord() {
        const char* p = m_p;
        while (p != m_end && (IsWordStart(*p) || IsDigit(*p))) ++p;
        const String word(m_p, p);
        Emit(m_p, p, word == "true" || word == "false" ? BoolToken : SymbolToken);
    }

    // `5.` is an int and a point, `1e5` an int and a word: an exponent exists only behind a fraction. An
    // exponent without digits is taken too; the conversion to a value refuses it.
    void ScanNumber() {
        const char* p = m_p;
        if (IsSign(*p)) ++p;
        if (IsInf(p)) return Emit(m_p, p + 3, FloatToken);
        p = SkipDigits(p);
        if (!IsFraction(p)) return Emit(m_p, p, IntToken);
        p = SkipDigits(p + 1);
        if (p != m_end && (*p == 'e' || *p == 'E')) {
            ++p;
            if (p != m_end && IsSign(*p)) ++p;
            p = SkipDigits(p);
        }
        Emit(m_p, p, FloatToken);
    }

    // Neither a quote nor a comment mark ends the run: `="abc"` does not hold a string.
    void ScanOperator() {
        const char* p = m_p + 1;
        while (p != m_end && !IsSpace(*p) && !IsWordStart(*p) && !IsSingle(*p) && !NumberStarts(p)) ++p;
        Emit(m_p, p, SymbolToken);
    }

    void ScanString() {
        String contents;
        for (const char* p = m_p + 1; p != m_end; ++p) {
            if (*p == '"') {
                m_tokens.push_back({std::move(contents), StringToken, m_place});
                m_p = p + 1;
                return;
            }
            if (*p != '\\') {
                contents += *p;
                continue;
            }
            if (++p == m_end) THROW(TokenException, "Bad string");
            contents += *p == 'n' ? '\n' : *p == 't' ? '\t' : *p;
        }
        THROW(TokenException, "Unmatched quote (\")");
    }

    const char* m_p;
    const char* const m_end;
    SourcePlace& m_place;              // of m_placed
    const char* m_placed;              // up to where lines are counted
    const char* m_lineBegin;           // of the line in which m_placed stands
    const char* m_signsEnd = nullptr;  // end of the run of signs that was looked at last
    bool m_numberBehindSigns = false;
    TokenList m_tokens;
};

}  // namespace

TokenList Tokenizer::Tokenize(const String& text, SourcePlace* place, size_t most) {
    SourcePlace unused;
    return Scanner(text, place != nullptr ? *place : unused).Scan(most);
}

}  // namespace script
