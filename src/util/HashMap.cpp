#include "util/HashMap.h"

namespace util {

// Trial division by 3, 5, 7, 9, ...; candidates up to 8 are taken as they stand.
static bool IsPrimeCandidate(size_t v) {
    if (v <= 8) return true;
    for (size_t divisor = 3; divisor * divisor <= v; divisor += 2) {
        if (v % divisor == 0) return false;
    }
    return true;
}

size_t BucketCountFor(size_t n) {
    if (n < 3) return 3;
    size_t v = n | 1;
    while (!IsPrimeCandidate(v)) v += 2;
    return v;
}

uint32_t StringHasher::operator()(const String& text) const {
    constexpr uint32_t MULTIPLIER = 65599;
    uint32_t hash = 0;
    for (const char c : text) hash = hash * MULTIPLIER + static_cast<uint32_t>(static_cast<signed char>(c));
    return hash;
}

}  // namespace util
