#pragma once

#include <cmath>

#include "util/VectorPOD.h"

// Plain vectors. `==` is exact; anything tolerant is a named predicate in math/Geometry.h.
namespace math {

using real = float;

constexpr real PI = 3.1415927f;
constexpr real TWO_PI = 6.2831855f;

template <class T>
struct TVector2 {
    T x{};
    T y{};

    constexpr TVector2() = default;
    constexpr TVector2(T x_, T y_) : x(x_), y(y_) {}

    TVector2& operator+=(const TVector2& v) {
        x += v.x;
        y += v.y;
        return *this;
    }
    TVector2& operator-=(const TVector2& v) {
        x -= v.x;
        y -= v.y;
        return *this;
    }
    TVector2& operator*=(T s) {
        x *= s;
        y *= s;
        return *this;
    }
    TVector2& operator/=(T s) {
        x /= s;
        y /= s;
        return *this;
    }

    friend constexpr TVector2 operator+(TVector2 a, TVector2 b) { return {a.x + b.x, a.y + b.y}; }
    friend constexpr TVector2 operator-(TVector2 a, TVector2 b) { return {a.x - b.x, a.y - b.y}; }
    friend constexpr TVector2 operator-(TVector2 a) { return {-a.x, -a.y}; }
    friend constexpr TVector2 operator*(TVector2 a, T s) { return {a.x * s, a.y * s}; }
    friend constexpr TVector2 operator*(T s, TVector2 a) { return {a.x * s, a.y * s}; }
    friend constexpr TVector2 operator/(TVector2 a, T s) { return {a.x / s, a.y / s}; }
    friend constexpr bool operator==(TVector2 a, TVector2 b) { return a.x == b.x && a.y == b.y; }
    friend constexpr bool operator!=(TVector2 a, TVector2 b) { return !(a == b); }
};

template <class T>
struct TVector3 {
    T x{};
    T y{};
    T z{};

    constexpr TVector3() = default;
    constexpr TVector3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}

    friend constexpr TVector3 operator+(TVector3 a, TVector3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend constexpr TVector3 operator*(TVector3 a, T s) { return {a.x * s, a.y * s, a.z * s}; }
    // Component by component, as colours multiply.
    friend constexpr TVector3 operator*(TVector3 a, TVector3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
    friend constexpr bool operator==(TVector3 a, TVector3 b) {
        return a.x == b.x && a.y == b.y && a.z == b.z;
    }
    friend constexpr bool operator!=(TVector3 a, TVector3 b) { return !(a == b); }
};

template <class T>
struct TVector4 {
    T x{};
    T y{};
    T z{};
    T w{};

    constexpr TVector4() = default;
    constexpr TVector4(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}

    friend constexpr TVector4 operator+(TVector4 a, TVector4 b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
    }
    friend constexpr TVector4 operator*(TVector4 a, T s) { return {a.x * s, a.y * s, a.z * s, a.w * s}; }
    // Component by component, as colours multiply.
    friend constexpr TVector4 operator*(TVector4 a, TVector4 b) {
        return {a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w};
    }
    friend constexpr bool operator==(TVector4 a, TVector4 b) {
        return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
    }
    friend constexpr bool operator!=(TVector4 a, TVector4 b) { return !(a == b); }
};

using Vec2 = TVector2<real>;
using Vec2i = TVector2<int>;
using Vec3 = TVector3<real>;
using Vec4 = TVector4<real>;
using Vec2List = util::VectorPOD<Vec2>;

template <class T>
constexpr T Dot(TVector2<T> a, TVector2<T> b) {
    return a.x * b.x + a.y * b.y;
}
// The z component of the three-dimensional cross product; positive when b lies to the left of a.
template <class T>
constexpr T Cross(TVector2<T> a, TVector2<T> b) {
    return a.x * b.y - a.y * b.x;
}
// The cross product of an angular velocity (out of the plane) with a vector: the velocity at r.
template <class T>
constexpr TVector2<T> Cross(T w, TVector2<T> r) {
    return {-w * r.y, w * r.x};
}
// A quarter turn to the left.
template <class T>
constexpr TVector2<T> Perpendicular(TVector2<T> v) {
    return {-v.y, v.x};
}
template <class T>
constexpr T LengthSquared(TVector2<T> v) {
    return Dot(v, v);
}
inline real Length(Vec2 v) {
    return std::sqrt(Dot(v, v));
}

}  // namespace math
