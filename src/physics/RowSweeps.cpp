#include "physics/RowSweeps.h"

#include "physics/Float4.h"
#include "physics/RowSweepLoops.h"

namespace physics {

const RowSweeps& GetNarrowRowSweeps() {
    return RowSweepLoops<Float4>::TABLE;
}

const RowSweeps& GetRowSweeps() {
#if defined(__x86_64__)
    const RowSweeps* const wide = GetWideRowSweeps();
    if (wide != nullptr && __builtin_cpu_supports("avx2")) return *wide;
#endif
    return GetNarrowRowSweeps();
}

}  // namespace physics
