#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace physics {

// Four floats that go through the same arithmetic side by side, each lane with exactly the bits that the
// same operations give on single floats. The plain form is for processors without SSE2.
#if defined(__SSE2__)

struct Float4 {
    __m128 v;

    static constexpr uint32_t LANES = 4;
    static Float4 Load(const float* p) { return {_mm_load_ps(p)}; }
    static Float4 Fill(float x) { return {_mm_set1_ps(x)}; }
    static Float4 Zero() { return {_mm_setzero_ps()}; }
};

inline void Store(float* p, Float4 a) {
    _mm_store_ps(p, a.v);
}
inline Float4 operator+(Float4 a, Float4 b) {
    return {_mm_add_ps(a.v, b.v)};
}
inline Float4 operator-(Float4 a, Float4 b) {
    return {_mm_sub_ps(a.v, b.v)};
}
inline Float4 operator*(Float4 a, Float4 b) {
    return {_mm_mul_ps(a.v, b.v)};
}
inline Float4 operator/(Float4 a, Float4 b) {
    return {_mm_div_ps(a.v, b.v)};
}
inline Float4 operator-(Float4 a) {
    return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))};
}
// Two floats from each place.
inline Float4 LoadTwoAndTwo(const float* first, const float* second) {
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(first));
    return {_mm_loadh_pi(_mm_castsi128_ps(low), reinterpret_cast<const __m64*>(second))};
}
// As std::max(a, b) and std::min(a, b), signed zeros and NaN included.
inline Float4 Max(Float4 a, Float4 b) {
    return {_mm_max_ps(b.v, a.v)};
}
inline Float4 Min(Float4 a, Float4 b) {
    return {_mm_min_ps(b.v, a.v)};
}
inline Float4 Sqrt(Float4 a) {
    return {_mm_sqrt_ps(a.v)};
}
// `value` in lanes where a < b, and 0 in the others.
inline Float4 KeepWhereLess(Float4 value, Float4 a, Float4 b) {
    return {_mm_and_ps(value.v, _mm_cmplt_ps(a.v, b.v))};
}
// The lanes where a < b, as bits.
inline uint32_t MaskLess4(Float4 a, Float4 b) {
    return static_cast<uint32_t>(_mm_movemask_ps(_mm_cmplt_ps(a.v, b.v)));
}
inline uint32_t MaskAtMost4(Float4 a, Float4 b) {  // where a <= b
    return static_cast<uint32_t>(_mm_movemask_ps(_mm_cmple_ps(a.v, b.v)));
}
// From and to any address.
inline void StoreLoose(float* p, Float4 a) {
    _mm_storeu_ps(p, a.v);
}
inline Float4 LoadLoose4(const float* p) {
    return {_mm_loadu_ps(p)};
}
// Whole numbers below 2^31.
inline Float4 LoadWhole4(const uint32_t* p) {
    return {_mm_cvtepi32_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
}
// The floats at these places.
inline Float4 Gather4(const float* from, const uint32_t* places) {
    return {_mm_setr_ps(from[places[0]], from[places[1]], from[places[2]], from[places[3]])};
}
// The same of pairs of floats: their first ones, and their second ones.
inline void GatherPairs4(const float* from, const uint32_t* places, Float4& first, Float4& second) {
    const auto load = [from](uint32_t a, uint32_t b) {
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + size_t(a) * 2));
        return _mm_loadh_pi(_mm_castsi128_ps(low), reinterpret_cast<const __m64*>(from + size_t(b) * 2));
    };
    const __m128 a = load(places[0], places[1]), b = load(places[2], places[3]);
    first = {_mm_shuffle_ps(a, b, 0x88)};
    second = {_mm_shuffle_ps(a, b, 0xDD)};
}
// The floats at these places, and those behind them.
inline void GatherNext4(const float* from, const uint32_t* places, Float4& here, Float4& next) {
    const __m128 a = LoadTwoAndTwo(from + places[0], from + places[1]).v;
    const __m128 b = LoadTwoAndTwo(from + places[2], from + places[3]).v;
    here = {_mm_shuffle_ps(a, b, 0x88)};
    next = {_mm_shuffle_ps(a, b, 0xDD)};
}
// Cut to whole numbers, of floats between -2^31 and 2^31.
inline Float4 Truncate(Float4 a) {
    return {_mm_cvtepi32_ps(_mm_cvttps_epi32(a.v))};
}
inline void StoreWhole4(uint32_t* p, Float4 a) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_cvttps_epi32(a.v));
}
// Rows become columns.
inline void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    _MM_TRANSPOSE4_PS(a.v, b.v, c.v, d.v);
}

#else

struct Float4 {
    float v[4];

    static constexpr uint32_t LANES = 4;
    static Float4 Load(const float* p) { return {{p[0], p[1], p[2], p[3]}}; }
    static Float4 Fill(float x) { return {{x, x, x, x}}; }
    static Float4 Zero() { return {{0, 0, 0, 0}}; }
};

template <class F>
inline Float4 PerLane(F f) {
    return {{f(0), f(1), f(2), f(3)}};
}
inline void Store(float* p, Float4 a) {
    for (int i = 0; i < 4; ++i) p[i] = a.v[i];
}
inline Float4 operator+(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] + b.v[i]; });
}
inline Float4 operator-(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] - b.v[i]; });
}
inline Float4 operator*(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] * b.v[i]; });
}
inline Float4 operator/(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] / b.v[i]; });
}
inline Float4 operator-(Float4 a) {
    return PerLane([=](int i) { return -a.v[i]; });
}
inline Float4 LoadTwoAndTwo(const float* first, const float* second) {
    return {{first[0], first[1], second[0], second[1]}};
}
inline Float4 Max(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] < b.v[i] ? b.v[i] : a.v[i]; });
}
inline Float4 Min(Float4 a, Float4 b) {
    return PerLane([=](int i) { return b.v[i] < a.v[i] ? b.v[i] : a.v[i]; });
}
inline Float4 Sqrt(Float4 a) {
    return PerLane([=](int i) { return std::sqrt(a.v[i]); });
}
inline Float4 KeepWhereLess(Float4 value, Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] < b.v[i] ? value.v[i] : 0.0f; });
}
inline uint32_t MaskLess4(Float4 a, Float4 b) {
    uint32_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= (a.v[i] < b.v[i] ? 1u : 0u) << i;
    return mask;
}
inline uint32_t MaskAtMost4(Float4 a, Float4 b) {
    uint32_t mask = 0;
    for (int i = 0; i < 4; ++i) mask |= (a.v[i] <= b.v[i] ? 1u : 0u) << i;
    return mask;
}
inline void StoreLoose(float* p, Float4 a) {
    Store(p, a);
}
inline Float4 LoadLoose4(const float* p) {
    return Float4::Load(p);
}
inline Float4 LoadWhole4(const uint32_t* p) {
    return PerLane([=](int i) { return static_cast<float>(p[i]); });
}
inline Float4 Gather4(const float* from, const uint32_t* places) {
    return PerLane([=](int i) { return from[places[i]]; });
}
inline void GatherPairs4(const float* from, const uint32_t* places, Float4& first, Float4& second) {
    first = PerLane([=](int i) { return from[size_t(places[i]) * 2]; });
    second = PerLane([=](int i) { return from[size_t(places[i]) * 2 + 1]; });
}
inline void GatherNext4(const float* from, const uint32_t* places, Float4& here, Float4& next) {
    here = PerLane([=](int i) { return from[places[i]]; });
    next = PerLane([=](int i) { return from[places[i] + 1]; });
}
inline Float4 Truncate(Float4 a) {
    return PerLane([=](int i) { return std::trunc(a.v[i]); });
}
inline void StoreWhole4(uint32_t* p, Float4 a) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint32_t>(static_cast<int32_t>(a.v[i]));
}
inline void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    const Float4 rows[4] = {a, b, c, d};
    Float4* const columns[4] = {&a, &b, &c, &d};
    for (int i = 0; i < 4; ++i) *columns[i] = PerLane([&](int j) { return rows[j].v[i]; });
}

#endif

// The numbers of LANES records of four floats, which begin at these places, turned so that those of a kind
// lie side by side; and back.
inline void LoadRecords(const float* from, const uint32_t* places, Float4& a, Float4& b, Float4& c,
                        Float4& d) {
    a = Float4::Load(from + places[0]);
    b = Float4::Load(from + places[1]);
    c = Float4::Load(from + places[2]);
    d = Float4::Load(from + places[3]);
    Transpose(a, b, c, d);
}
inline void StoreRecords(float* to, const uint32_t* places, Float4 a, Float4 b, Float4 c, Float4 d) {
    Transpose(a, b, c, d);
    Store(to + places[0], a);
    Store(to + places[1], b);
    Store(to + places[2], c);
    Store(to + places[3], d);
}

}  // namespace physics
