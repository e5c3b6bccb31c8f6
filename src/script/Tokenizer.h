#pragma once

#include <cstdint>
#include <vector>

#include "script/Exceptions.h"
#include "script/SourcePlace.h"

namespace script {

enum TokenKind : uint8_t {
    BoolToken,    // the words `true` and `false`
    FloatToken,   // a number with a fraction part, or an infinity with its sign
    IntToken,     // a number without a fraction part
    StringToken,  // a quoted string
    SymbolToken   // everything else: identifiers, brackets, the comma, runs of operator characters
};

struct Token {
    String text;  // decoded and without quotes for a string, otherwise as written
    TokenKind kind;
    SourcePlace place = {};

    bool IsSymbol(const char* symbol) const { return kind == SymbolToken && text == symbol; }
};
using TokenList = std::vector<Token>;
using TokenIt = TokenList::const_iterator;

// Cuts a text into tokens without knowing the grammar. A sign directly before a digit belongs to the number
// (`a-5` is two tokens), and a run of operator characters ends neither at a quote nor at `//`: whoever
// writes script text puts blanks around operators.
class Tokenizer {
  public:
    // Takes time linear in the text. Raises TokenException with "Bad string" or "Unmatched quote (\")"; any
    // other text has tokens. A UTF-8 mark at the start is skipped. `place` follows the scan, and so tells
    // after a failure where it was. Of a text of more than `most` tokens one more comes than that, and no
    // further.
    static TokenList Tokenize(const String& text, SourcePlace* place = nullptr, size_t most = SIZE_MAX);
};

}  // namespace script
