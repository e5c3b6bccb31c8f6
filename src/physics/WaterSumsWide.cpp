// Built for processors with AVX2; see Float8.h for what that forbids.

#include "physics/WaterLoops.h"
#include "physics/WaterSums.h"

namespace physics {

const WaterSums* GetWideWaterSums() {
#if defined(__AVX2__)
    return &WaterLoops<wide::Float8>::TABLE;
#else
    return nullptr;
#endif
}

}  // namespace physics
