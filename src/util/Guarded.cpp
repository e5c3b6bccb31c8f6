#include "util/Guarded.h"

namespace util {

void LogGuarded(const std::exception& e, const String& context, logging::LogLevel level, const Place& place) {
    LogException(e, SourcePosition(place.file, place.line, place.function));
    Log(level, context + e.what());
}

void LogGuardedUnknown(const String& context, logging::LogLevel level, const Place& place) {
    LogUnknownException(SourcePosition(place.file, place.line, place.function));
    Log(level, context + "Fail");
}

}  // namespace util
