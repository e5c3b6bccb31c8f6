// Built for processors with AVX2, and run on such alone. So nothing here may call an inline function from
// elsewhere that the compiler could leave as a function of its own: the linker might keep this file's copy
// for everybody.

#include "physics/RowSweepLoops.h"

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace physics {

#if defined(__AVX2__)

namespace {

struct Wide {
    static constexpr uint32_t LANES = 8;
    using V = __m256;  // for which the compilers know + - * and the sign

    static V Load(const float* p) { return _mm256_loadu_ps(p); }
    static void Store(float* p, V a) { _mm256_storeu_ps(p, a); }
    static V Fill(float x) { return _mm256_set1_ps(x); }
    static V Zero() { return _mm256_setzero_ps(); }
    static V Max(V a, V b) { return _mm256_max_ps(b, a); }
    static V Min(V a, V b) { return _mm256_min_ps(b, a); }

    template <class Bodies>
    static void LoadBodies(const math::real* from, const uint32_t* places, Bodies& to) {
        to.vx = LoadPair(from, places[0], places[4]);
        to.vy = LoadPair(from, places[1], places[5]);
        to.w = LoadPair(from, places[2], places[6]);
        to.massInv = LoadPair(from, places[3], places[7]);
        Turn(to);
    }
    template <class Bodies>
    static void StoreBodies(math::real* to, const uint32_t* places, Bodies& from) {
        Turn(from);
        StorePair(to, places[0], places[4], from.vx);
        StorePair(to, places[1], places[5], from.vy);
        StorePair(to, places[2], places[6], from.w);
        StorePair(to, places[3], places[7], from.massInv);
    }

  private:
    static V LoadPair(const math::real* from, uint32_t low, uint32_t high) {
        const __m256 first = _mm256_castps128_ps256(_mm_load_ps(from + low));
        return _mm256_insertf128_ps(first, _mm_load_ps(from + high), 1);
    }
    static void StorePair(math::real* to, uint32_t low, uint32_t high, V pair) {
        _mm_store_ps(to + low, _mm256_castps256_ps128(pair));
        _mm_store_ps(to + high, _mm256_extractf128_ps(pair, 1));
    }
    // Rows become columns, in both halves.
    template <class Bodies>
    static void Turn(Bodies& b) {
        const V low01 = _mm256_unpacklo_ps(b.vx, b.vy), high01 = _mm256_unpackhi_ps(b.vx, b.vy);
        const V low23 = _mm256_unpacklo_ps(b.w, b.massInv), high23 = _mm256_unpackhi_ps(b.w, b.massInv);
        b.vx = _mm256_shuffle_ps(low01, low23, 0x44);
        b.vy = _mm256_shuffle_ps(low01, low23, 0xEE);
        b.w = _mm256_shuffle_ps(high01, high23, 0x44);
        b.massInv = _mm256_shuffle_ps(high01, high23, 0xEE);
    }
};

}  // namespace

const RowSweeps* GetWideRowSweeps() {
    return &RowSweepLoops<Wide>::TABLE;
}

#else

const RowSweeps* GetWideRowSweeps() {
    return nullptr;
}

#endif

}  // namespace physics
