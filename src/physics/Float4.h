#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace physics {

// Four floats that go through the same arithmetic side by side, each lane with exactly the bits that the
// same operations give on single floats. The plain form is for processors without SSE2.
#if defined(__SSE2__)

struct Float4 {
    __m128 v;
};

inline Float4 LoadFloat4(const float* p) {
    return {_mm_load_ps(p)};
}
inline void Store(float* p, Float4 a) {
    _mm_store_ps(p, a.v);
}
inline Float4 Zero4() {
    return {_mm_setzero_ps()};
}
inline Float4 Fill4(float x) {
    return {_mm_set1_ps(x)};
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
inline Float4 operator-(Float4 a) {
    return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))};
}
// As std::max(a, b) and std::min(a, b), signed zeros and NaN included.
inline Float4 Max(Float4 a, Float4 b) {
    return {_mm_max_ps(b.v, a.v)};
}
inline Float4 Min(Float4 a, Float4 b) {
    return {_mm_min_ps(b.v, a.v)};
}
// Rows become columns.
inline void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    _MM_TRANSPOSE4_PS(a.v, b.v, c.v, d.v);
}

#else

struct Float4 {
    float v[4];
};

template <class F>
inline Float4 PerLane(F f) {
    return {{f(0), f(1), f(2), f(3)}};
}
inline Float4 LoadFloat4(const float* p) {
    return PerLane([=](int i) { return p[i]; });
}
inline void Store(float* p, Float4 a) {
    for (int i = 0; i < 4; ++i) p[i] = a.v[i];
}
inline Float4 Zero4() {
    return {{0, 0, 0, 0}};
}
inline Float4 Fill4(float x) {
    return {{x, x, x, x}};
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
inline Float4 operator-(Float4 a) {
    return PerLane([=](int i) { return -a.v[i]; });
}
inline Float4 Max(Float4 a, Float4 b) {
    return PerLane([=](int i) { return a.v[i] < b.v[i] ? b.v[i] : a.v[i]; });
}
inline Float4 Min(Float4 a, Float4 b) {
    return PerLane([=](int i) { return b.v[i] < a.v[i] ? b.v[i] : a.v[i]; });
}
inline void Transpose(Float4& a, Float4& b, Float4& c, Float4& d) {
    const Float4 rows[4] = {a, b, c, d};
    Float4* const columns[4] = {&a, &b, &c, &d};
    for (int i = 0; i < 4; ++i) *columns[i] = PerLane([&](int j) { return rows[j].v[i]; });
}

#endif

}  // namespace physics
