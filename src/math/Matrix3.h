#pragma once

#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "util/Assert.h"

namespace math {

// A homogeneous transform of the plane: 3 by 3, row major, acting on column vectors.
template <class T>
struct TMatrix3 {
    T m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    TMatrix3() = default;
    explicit TMatrix3(const RigidTransform& t) {
        m[0][0] = t.cos;
        m[0][1] = -t.sin;
        m[0][2] = t.x;
        m[1][0] = t.sin;
        m[1][1] = t.cos;
        m[1][2] = t.y;
    }

    static TMatrix3 Translation(T x, T y) {
        TMatrix3 result;
        result.m[0][2] = x;
        result.m[1][2] = y;
        return result;
    }
    static TMatrix3 Scale(T x, T y) {
        TMatrix3 result;
        result.m[0][0] = x;
        result.m[1][1] = y;
        return result;
    }

    // Full homogeneous product with the divide by the third coordinate.
    TVector2<T> operator()(TVector2<T> p) const {
        const TVector3<T> h = *this * TVector3<T>(p.x, p.y, 1);
        return {h.x / h.z, h.y / h.z};
    }

    friend TVector3<T> operator*(const TMatrix3& a, TVector3<T> v) {
        return {a.m[0][0] * v.x + a.m[0][1] * v.y + a.m[0][2] * v.z,
                a.m[1][0] * v.x + a.m[1][1] * v.y + a.m[1][2] * v.z,
                a.m[2][0] * v.x + a.m[2][1] * v.y + a.m[2][2] * v.z};
    }
    friend TMatrix3 operator*(const TMatrix3& a, const TMatrix3& b) {
        TMatrix3 result;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                result.m[r][c] = a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] + a.m[r][2] * b.m[2][c];
            }
        }
        return result;
    }
    // Element by element, for blending.
    friend TMatrix3 operator+(const TMatrix3& a, const TMatrix3& b) {
        TMatrix3 result;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) result.m[r][c] = a.m[r][c] + b.m[r][c];
        }
        return result;
    }
    friend TMatrix3 operator*(const TMatrix3& a, T s) {
        TMatrix3 result;
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) result.m[r][c] = a.m[r][c] * s;
        }
        return result;
    }
    friend bool operator==(const TMatrix3& a, const TMatrix3& b) {
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                if (a.m[r][c] != b.m[r][c]) return false;
            }
        }
        return true;
    }
    friend bool operator!=(const TMatrix3& a, const TMatrix3& b) { return !(a == b); }
};

// The adjugate over the determinant. A determinant of zero is reported and gives infinities.
template <class T>
TMatrix3<T> Inverted(const TMatrix3<T>& a) {
    const auto cofactor = [&a](int r, int c) {
        const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return a.m[r1][c1] * a.m[r2][c2] - a.m[r1][c2] * a.m[r2][c1];
    };
    const T det = a.m[0][0] * cofactor(0, 0) + a.m[0][1] * cofactor(0, 1) + a.m[0][2] * cofactor(0, 2);
    DATA_CHECK(det != 0);
    TMatrix3<T> inverse;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) inverse.m[c][r] = cofactor(r, c) / det;
    }
    return inverse;
}

template <class T>
TMatrix3<T> Transposed(const TMatrix3<T>& a) {
    TMatrix3<T> result;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) result.m[r][c] = a.m[c][r];
    }
    return result;
}

}  // namespace math
