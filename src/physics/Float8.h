#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Float4.h"

#if defined(__AVX2__)
#include <immintrin.h>
#endif

// Eight floats that go through the same arithmetic side by side, each lane with exactly the bits that the
// same operations give on single floats: so the narrow and the wide form agree. What is written for eight
// lanes is a template over the form. The wide one exists only in files that are built for AVX2, which must
// run on such processors alone and call no inline function from elsewhere: the linker might keep their copy
// for everybody.
namespace physics::narrow {

struct Float8 {
    Float4 low, high;

    static Float8 Load(const float* p) { return {Float4::Load(p), Float4::Load(p + 4)}; }
    static Float8 LoadWhole(const uint32_t* p) { return {LoadWhole4(p), LoadWhole4(p + 4)}; }  // below 2^31
    static Float8 Fill(float x) { return {Float4::Fill(x), Float4::Fill(x)}; }
    static Float8 Zero() { return {Float4::Zero(), Float4::Zero()}; }
    static Float8 Gather(const float* from, const uint32_t* places) {
        return {Gather4(from, places), Gather4(from, places + 4)};
    }
    static void LoadPairs(const math::Vec2* from, Float8& x, Float8& y) {
        constexpr uint32_t PLACES[8] = {0, 1, 2, 3, 4, 5, 6, 7};
        GatherPairs(from, PLACES, x, y);
    }
    static void GatherPairs(const math::Vec2* from, const uint32_t* places, Float8& x, Float8& y) {
        GatherPairs4(&from->x, places, x.low, y.low);
        GatherPairs4(&from->x, places + 4, x.high, y.high);
    }
    // Writes first + l for each lane l that is set in the mask, and up to eight numbers in all; returns how
    // many are set.
    static uint32_t StoreChosen(uint32_t* to, uint32_t first, uint32_t mask) {
        uint32_t count = 0;
        for (uint32_t l = 0; l < 8; ++l) {
            to[count] = first + l;
            count += mask >> l & 1;
        }
        return count;
    }
};

inline void Store(float* p, Float8 a) {
    Store(p, a.low);
    Store(p + 4, a.high);
}
inline void StorePairs(math::Vec2* to, Float8 x, Float8 y) {
    alignas(16) float xs[8], ys[8];
    Store(xs, x);
    Store(ys, y);
    for (int i = 0; i < 8; ++i) to[i] = {xs[i], ys[i]};
}
inline Float8 operator+(Float8 a, Float8 b) {
    return {a.low + b.low, a.high + b.high};
}
inline Float8 operator-(Float8 a, Float8 b) {
    return {a.low - b.low, a.high - b.high};
}
inline Float8 operator*(Float8 a, Float8 b) {
    return {a.low * b.low, a.high * b.high};
}
inline Float8 operator-(Float8 a) {
    return {-a.low, -a.high};
}
inline Float8 Max(Float8 a, Float8 b) {
    return {Max(a.low, b.low), Max(a.high, b.high)};
}
inline Float8 Min(Float8 a, Float8 b) {
    return {Min(a.low, b.low), Min(a.high, b.high)};
}
inline Float8 Sqrt(Float8 a) {
    return {Sqrt(a.low), Sqrt(a.high)};
}
// `value` in lanes where a < b, and 0 in the others.
inline Float8 KeepWhereLess(Float8 value, Float8 a, Float8 b) {
    return {KeepWhereLess(value.low, a.low, b.low), KeepWhereLess(value.high, a.high, b.high)};
}
// The lanes where a < b, as bits.
inline uint32_t MaskLess(Float8 a, Float8 b) {
    return MaskLess4(a.low, b.low) | MaskLess4(a.high, b.high) << 4;
}

}  // namespace physics::narrow

#if defined(__AVX2__)
namespace physics::wide {

// For each mask of eight bits: the places of those that are set.
struct ChosenLanes {
    uint8_t places[256][8] = {};

    constexpr ChosenLanes() {
        for (int mask = 0; mask < 256; ++mask) {
            int count = 0;
            for (uint8_t l = 0; l < 8; ++l) {
                if ((mask >> l & 1) != 0) places[mask][count++] = l;
            }
        }
    }
};
inline constexpr ChosenLanes CHOSEN_LANES;

struct Float8 {
    __m256 v;

    static constexpr uint32_t LANES = 8;
    static Float8 Load(const float* p) { return {_mm256_loadu_ps(p)}; }
    static Float8 LoadWhole(const uint32_t* p) {
        return {_mm256_cvtepi32_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
    }
    static Float8 Fill(float x) { return {_mm256_set1_ps(x)}; }
    static Float8 Zero() { return {_mm256_setzero_ps()}; }
    static Float8 Gather(const float* from, const uint32_t* places) {
        return {_mm256_setr_ps(from[places[0]], from[places[1]], from[places[2]], from[places[3]],
                               from[places[4]], from[places[5]], from[places[6]], from[places[7]])};
    }
    static void LoadPairs(const math::Vec2* from, Float8& x, Float8& y) {
        const float* const p = &from->x;
        const __m256 low = _mm256_loadu_ps(p), high = _mm256_loadu_ps(p + 8);
        Split(_mm256_permute2f128_ps(low, high, 0x20), _mm256_permute2f128_ps(low, high, 0x31), x, y);
    }
    // By single loads: gathers are no faster, and on many processors far slower.
    static void GatherPairs(const math::Vec2* from, const uint32_t* places, Float8& x, Float8& y) {
        Split(LoadFour(from, places[0], places[1], places[4], places[5]),
              LoadFour(from, places[2], places[3], places[6], places[7]), x, y);
    }
    static uint32_t StoreChosen(uint32_t* to, uint32_t first, uint32_t mask) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(CHOSEN_LANES.places[mask]));
        const __m256i numbers =
            _mm256_add_epi32(_mm256_cvtepu8_epi32(bytes), _mm256_set1_epi32(static_cast<int>(first)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), numbers);
        return static_cast<uint32_t>(__builtin_popcount(mask));
    }

  private:
    static __m256 LoadFour(const math::Vec2* from, uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        const __m128 low = LoadTwo(from, a, b), high = LoadTwo(from, c, d);
        return _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
    }
    static __m128 LoadTwo(const math::Vec2* from, uint32_t a, uint32_t b) {
        const __m128 first = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + a)));
        return _mm_loadh_pi(first, reinterpret_cast<const __m64*>(from + b));
    }
    static void Split(__m256 even, __m256 odd, Float8& x, Float8& y) {
        x = {_mm256_shuffle_ps(even, odd, 0x88)};
        y = {_mm256_shuffle_ps(even, odd, 0xDD)};
    }
};

inline void Store(float* p, Float8 a) {
    _mm256_storeu_ps(p, a.v);
}
inline void StorePairs(math::Vec2* to, Float8 x, Float8 y) {
    const __m256 even = _mm256_unpacklo_ps(x.v, y.v), odd = _mm256_unpackhi_ps(x.v, y.v);
    _mm256_storeu_ps(&to->x, _mm256_permute2f128_ps(even, odd, 0x20));
    _mm256_storeu_ps(&to[4].x, _mm256_permute2f128_ps(even, odd, 0x31));
}
inline Float8 operator+(Float8 a, Float8 b) {
    return {_mm256_add_ps(a.v, b.v)};
}
inline Float8 operator-(Float8 a, Float8 b) {
    return {_mm256_sub_ps(a.v, b.v)};
}
inline Float8 operator*(Float8 a, Float8 b) {
    return {_mm256_mul_ps(a.v, b.v)};
}
inline Float8 operator-(Float8 a) {
    return {_mm256_xor_ps(a.v, _mm256_set1_ps(-0.0f))};
}
inline Float8 Max(Float8 a, Float8 b) {
    return {_mm256_max_ps(b.v, a.v)};
}
inline Float8 Min(Float8 a, Float8 b) {
    return {_mm256_min_ps(b.v, a.v)};
}
inline Float8 Sqrt(Float8 a) {
    return {_mm256_sqrt_ps(a.v)};
}
inline Float8 KeepWhereLess(Float8 value, Float8 a, Float8 b) {
    return {_mm256_and_ps(value.v, _mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ))};
}
// Rows become columns, in both halves.
inline void Transpose(Float8& a, Float8& b, Float8& c, Float8& d) {
    const __m256 lowAB = _mm256_unpacklo_ps(a.v, b.v), highAB = _mm256_unpackhi_ps(a.v, b.v);
    const __m256 lowCD = _mm256_unpacklo_ps(c.v, d.v), highCD = _mm256_unpackhi_ps(c.v, d.v);
    a = {_mm256_shuffle_ps(lowAB, lowCD, 0x44)};
    b = {_mm256_shuffle_ps(lowAB, lowCD, 0xEE)};
    c = {_mm256_shuffle_ps(highAB, highCD, 0x44)};
    d = {_mm256_shuffle_ps(highAB, highCD, 0xEE)};
}
inline void LoadRecords(const float* from, const uint32_t* places, Float8& a, Float8& b, Float8& c,
                        Float8& d) {
    const auto load = [=](uint32_t low, uint32_t high) {
        const __m256 first = _mm256_castps128_ps256(_mm_load_ps(from + low));
        return Float8{_mm256_insertf128_ps(first, _mm_load_ps(from + high), 1)};
    };
    a = load(places[0], places[4]);
    b = load(places[1], places[5]);
    c = load(places[2], places[6]);
    d = load(places[3], places[7]);
    Transpose(a, b, c, d);
}
inline void StoreRecords(float* to, const uint32_t* places, Float8 a, Float8 b, Float8 c, Float8 d) {
    const auto store = [=](uint32_t low, uint32_t high, Float8 both) {
        _mm_store_ps(to + low, _mm256_castps256_ps128(both.v));
        _mm_store_ps(to + high, _mm256_extractf128_ps(both.v, 1));
    };
    Transpose(a, b, c, d);
    store(places[0], places[4], a);
    store(places[1], places[5], b);
    store(places[2], places[6], c);
    store(places[3], places[7], d);
}
inline uint32_t MaskLess(Float8 a, Float8 b) {
    return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ)));
}

}  // namespace physics::wide
#endif
