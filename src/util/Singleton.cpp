#include "util/Singleton.h"

#include "util/Assert.h"
#include "util/Exception.h"

namespace util {

void ThrowPhoenix(const char* typeName) {
    THROW(BadCoderException, String("Phoenix singleton detected: ") + typeName);
}

void AssertNoInstance(bool noInstance) {
    const bool s_instance = !noInstance;
    CODE_ASSERTION(!s_instance);
}

}  // namespace util
