#pragma once

#include <exception>

#include "logging/Log.h"
#include "util/Exception.h"

namespace util {

// A place in the source, by default that of the caller.
struct Place {
    static constexpr Place Current(const char* file = __builtin_FILE(), long line = __builtin_LINE(),
                                   const char* function = __builtin_FUNCTION()) {
        return {file, line, function};
    }

    const char* file;
    long line;
    const char* function;
};

// What every Guarded does with a failure: `context` + reason at `level`, the place at level Trace.
void LogGuarded(const std::exception& e, const String& context, logging::LogLevel level, const Place& place);
void LogGuardedUnknown(const String& context, logging::LogLevel level, const Place& place);

// Runs `function`, whose failure is told and goes no further. True when nothing was thrown. Something that
// is no std::exception is told as "Fail".
template <class Function>
bool Guarded(const Function& function, const char* context = "", logging::LogLevel level = logging::Warning,
             const Place& place = Place::Current()) {
    try {
        function();
        return true;
    } catch (const std::exception& e) {
        LogGuarded(e, context, level, place);
    } catch (...) {
        LogGuardedUnknown(context, level, place);
    }
    return false;
}

}  // namespace util
