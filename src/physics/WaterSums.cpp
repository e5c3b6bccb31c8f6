#include "physics/WaterSums.h"

#include "physics/WaterLoops.h"

namespace physics {

const WaterSums& GetNarrowWaterSums() {
    return WaterLoops<narrow::Float8>::TABLE;
}

static const WaterSums& ChooseWaterSums() {
#if defined(__x86_64__)
    if (GetWideWaterSums() != nullptr && __builtin_cpu_supports("avx2")) return *GetWideWaterSums();
#endif
    return GetNarrowWaterSums();
}

const WaterSums& GetWaterSums() {
    static const WaterSums& s_sums = ChooseWaterSums();
    return s_sums;
}

}  // namespace physics
