#pragma once

#include <typeinfo>

#include "util/String.h"

namespace util {

class Pointee;

void LogDeleteFailure(const String& typeName, const char* what, const String& where);
void LogUnknownDeleteFailure(const String& typeName, const String& where);

// Deletes `object` (null does nothing) and lets no exception of its destructor leave: it is logged.
void SafeDelete(const Pointee* object) noexcept;

}  // namespace util
