// Built for processors with AVX2, and run on such alone. So nothing here may call an inline function from
// elsewhere that the compiler could leave as a function of its own: the linker might keep this file's copy
// for everybody.

#include "physics/Float8.h"
#include "physics/RowSweepLoops.h"

namespace physics {

#if defined(__AVX2__)

const RowSweeps* GetWideRowSweeps() {
    return &RowSweepLoops<wide::Float8>::TABLE;
}

#else

const RowSweeps* GetWideRowSweeps() {
    return nullptr;
}

#endif

}  // namespace physics
