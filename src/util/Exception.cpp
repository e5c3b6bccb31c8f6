#include "util/Exception.h"

#include "logging/Log.h"

void LogUnknownException(const String& where) {
    Log(logging::Trace, "Caught an unknown exception: " + where);
}

void LogException(const std::exception& e, const String& where) {
    Log(logging::Trace, String("Caught exception: ") + e.what() + ", " + where);
}

void LogException(const Exception& e, const String& where) {
    Log(logging::Trace, String("Caught Exception: ") + e.what() + ", " + where);
}

namespace util {

String SourcePosition(const char* file, long line, const char* function) {
    return String(file) + ":" + std::to_string(line) + ": " + function;
}

void LogThrow(const char* what, const String& where) {
    Log(logging::Trace, String("Exception thrown: ") + what + " from " + where);
}

void LogPassedOn(const String& where) {
    Log(logging::Trace, "Exception passed on at " + where);
}

}  // namespace util
