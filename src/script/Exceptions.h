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

// A program that has worked for too long. The only failure that ends more than its statement: everything up
// to the outermost Execute.
class TimeoutException : public ScriptException {
  public:
    using ScriptException::ScriptException;
};

}  // namespace script
