#include "physics/RowSweeps.h"

#include "physics/Float4.h"
#include "physics/RowSweepLoops.h"

namespace physics {

namespace {

struct Narrow {
    static constexpr uint32_t LANES = 4;
    using V = Float4;

    static V Load(const float* p) { return LoadFloat4(p); }
    static void Store(float* p, V a) { physics::Store(p, a); }
    static V Fill(float x) { return Fill4(x); }
    static V Zero() { return Zero4(); }
    static V Max(V a, V b) { return physics::Max(a, b); }
    static V Min(V a, V b) { return physics::Min(a, b); }

    template <class Bodies>
    static void LoadBodies(const math::real* from, const uint32_t* places, Bodies& to) {
        to.vx = Load(from + places[0]);
        to.vy = Load(from + places[1]);
        to.w = Load(from + places[2]);
        to.massInv = Load(from + places[3]);
        Transpose(to.vx, to.vy, to.w, to.massInv);
    }
    template <class Bodies>
    static void StoreBodies(math::real* to, const uint32_t* places, Bodies& from) {
        Transpose(from.vx, from.vy, from.w, from.massInv);
        Store(to + places[0], from.vx);
        Store(to + places[1], from.vy);
        Store(to + places[2], from.w);
        Store(to + places[3], from.massInv);
    }
};

}  // namespace

const RowSweeps& GetNarrowRowSweeps() {
    return RowSweepLoops<Narrow>::TABLE;
}

const RowSweeps& GetRowSweeps() {
#if defined(__x86_64__)
    const RowSweeps* const wide = GetWideRowSweeps();
    if (wide != nullptr && __builtin_cpu_supports("avx2")) return *wide;
#endif
    return GetNarrowRowSweeps();
}

}  // namespace physics
