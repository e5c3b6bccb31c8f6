#pragma once

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace physics {

// For a scope, numbers too small for the full precision of a float count as 0, in operands and results; the
// caller's mode comes back at the end. Velocities that die away pass through such numbers for seconds, and a
// processor takes a hundred times as long for each.
class ScopedFlushToZero {
  public:
#if defined(__SSE2__)
    ScopedFlushToZero() : m_mode(_mm_getcsr()) {
        _mm_setcsr(m_mode | FLUSH_RESULTS | ZERO_OPERANDS);
    }
    ~ScopedFlushToZero() {
        _mm_setcsr(m_mode);
    }
#else
    ScopedFlushToZero() = default;
    ~ScopedFlushToZero() {}
#endif
    ScopedFlushToZero(const ScopedFlushToZero&) = delete;
    ScopedFlushToZero& operator=(const ScopedFlushToZero&) = delete;

  private:
#if defined(__SSE2__)
    static constexpr unsigned FLUSH_RESULTS = 0x8000;
    static constexpr unsigned ZERO_OPERANDS = 0x0040;
    unsigned m_mode;
#endif
};

}  // namespace physics
