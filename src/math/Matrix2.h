#pragma once

#include "math/Vector.h"
#include "util/Assert.h"

namespace math {

// A 2 by 2 matrix, row major.
template <class T>
struct TMatrix2 {
    T m[2][2] = {{1, 0}, {0, 1}};

    friend TVector2<T> operator*(const TMatrix2& a, TVector2<T> v) {
        return {a.m[0][0] * v.x + a.m[0][1] * v.y, a.m[1][0] * v.x + a.m[1][1] * v.y};
    }
};

// The adjugate over the determinant. A determinant of zero is reported and gives infinities.
template <class T>
TMatrix2<T> Inverted(const TMatrix2<T>& a) {
    const T det = a.m[0][0] * a.m[1][1] - a.m[0][1] * a.m[1][0];
    DATA_CHECK(det != 0);
    const T s = 1 / det;
    TMatrix2<T> inverse;
    inverse.m[0][0] = a.m[1][1] * s;
    inverse.m[0][1] = -a.m[0][1] * s;
    inverse.m[1][0] = -a.m[1][0] * s;
    inverse.m[1][1] = a.m[0][0] * s;
    return inverse;
}

template <class T>
TMatrix2<T> Transposed(const TMatrix2<T>& a) {
    TMatrix2<T> result = a;
    result.m[0][1] = a.m[1][0];
    result.m[1][0] = a.m[0][1];
    return result;
}

}  // namespace math
