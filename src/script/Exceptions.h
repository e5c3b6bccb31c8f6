#pragma once

#include "util/Exception.h"

namespace script {

// A text that cannot be cut into tokens.
class TokenException : public BadDataException {
  public:
    using BadDataException::BadDataException;
};

// A text whose tokens do not form a program.
class ParseException : public BadDataException {
  public:
    using BadDataException::BadDataException;
};

// Everything that goes wrong while a program runs. Costs the statement in which it arises.
class ScriptException : public BadDataException {
  public:
    using BadDataException::BadDataException;
};

}  // namespace script
