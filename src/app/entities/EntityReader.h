#pragma once

#include "app/Fwd.h"
#include "logging/Log.h"
#include "script/Conversions.h"

namespace app {

inline bool HasKey(const EntitySerializer& in, const char* key) {
    return in.count(key) != 0;
}

// Reads a value that should be there. A missing one is logged and leaves `value` alone; one of the wrong
// type throws ScriptException.
template <class T>
bool ReadKey(const EntitySerializer& in, const char* key, T& value) {
    const auto found = in.find(key);
    if (found == in.end()) {
        Log(logging::Warning, String("Couldn't find attribute ") + key);
        return false;
    }
    value = script::ObjectToValue<T>(found->second);
    return true;
}

}  // namespace app
