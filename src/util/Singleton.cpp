#include "util/Singleton.h"

#include "util/Exception.h"

namespace util {

void ThrowPhoenix(const char* typeName) {
    THROW(BadCoderException, String("Phoenix singleton detected: ") + typeName);
}

}  // namespace util
