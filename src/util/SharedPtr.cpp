#include "util/SharedPtr.h"

#include <stdexcept>

#include "util/Exception.h"

namespace util {

void ThrowNullPointer(const char* text) {
    THROW(std::runtime_error, text);
}

}  // namespace util
