#pragma once

#include <stdexcept>

#include "util/String.h"

// The program's failures. All are thrown by value through THROW, which logs the place.

// Base of the program's own failures.
class Exception : public std::runtime_error {
  public:
    explicit Exception(const String& what) : std::runtime_error(what), m_what(what) {}
    const String& GetText() const { return m_what; }

  private:
    String m_what;  // a copy beside the base's, readable as a String
};

// The program cannot go on (a failed shader set-up, for instance).
class FatalException : public Exception {
  public:
    using Exception::Exception;
};

// A file, a script or a user's value is wrong.
class BadDataException : public Exception {
  public:
    using Exception::Exception;
};

// A programming error: a failed code assertion, a second construction of a singleton.
class BadCoderException : public Exception {
  public:
    using Exception::Exception;
};

// A file cannot be opened or read.
class FileReadException : public BadDataException {
  public:
    using BadDataException::BadDataException;
};

// Three ways to log a failure that goes no further, all at level Trace. `where` is WHERE.
void LogUnknownException(const String& where);
void LogException(const std::exception& e, const String& where);
void LogException(const Exception& e, const String& where);

namespace util {

String SourcePosition(const char* file, long line, const char* function);
void LogThrow(const char* what, const String& where);
void LogPassedOn(const String& where);

}  // namespace util

// The source position as "file:line: function".
#define WHERE util::SourcePosition(__FILE__, __LINE__, __PRETTY_FUNCTION__)

// Logs "Exception thrown: " + text + " from " + place, then throws a ExceptionClass made of `text`.
#define THROW(ExceptionClass, text)                    \
    do {                                               \
        ExceptionClass thrownException{(text)};        \
        util::LogThrow(thrownException.what(), WHERE); \
        throw thrownException;                         \
    } while (false)

// Stands behind a try block: logs the place and lets the exception travel on, so that the log shows the
// stack of a failure.
#define PASS_ON_EXCEPTIONS        \
    catch (...) {                 \
        util::LogPassedOn(WHERE); \
        throw;                    \
    }
