#include "util/SafeDelete.h"

#include "logging/Log.h"
#include "util/Exception.h"
#include "util/Pointee.h"

namespace util {

void LogDeleteFailure(const String& typeName, const char* what, const String& where) {
    Log(logging::Trace, String("Caught exception: ") + what + ", " + where);
    Log(logging::Warning, "Exception caught when deleting a " + typeName + ": " + what);
}

void LogUnknownDeleteFailure(const String& typeName, const String& where) {
    LogUnknownException(where);
    Log(logging::Warning, "Unknown exception caught when deleting a " + typeName);
}

void SafeDelete(const Pointee* object) noexcept {
    if (object == nullptr) return;
    const String typeName = typeid(*object).name();
    try {
        delete object;
    } catch (const std::exception& e) {
        LogDeleteFailure(typeName, e.what(), WHERE);
    } catch (...) {
        LogUnknownDeleteFailure(typeName, WHERE);
    }
}

}  // namespace util
