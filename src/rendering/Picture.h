#pragma once

#include <string>
#include <vector>

#include "math/Vector.h"
#include "util/Array2D.h"
#include "util/VectorPOD.h"

namespace rendering {

template <class T>
using Pixels = util::Array2D<T, util::VectorPOD<T>>;
using RGBA32 = math::TVector4<unsigned char>;

// A picture as plain data, which a second thread may make. Rows go upward as in GL.
struct Picture {
    Pixels<RGBA32> pixels;
    std::vector<Pixels<RGBA32>>
        halves;  // the further levels of its mipmap, the finest first, if they are made
    bool hasAlpha = true;
    std::string fault;  // why there is none; empty when there is
};

// A file of the image library (PNG, BMP, JPEG, TGA), once its first bytes are plausible. Logs nothing.
Picture ReadPicture(const std::string& path, bool withHalves = false);

// The next level of a mipmap: sides half as long, rounded down, but at least 1; each texel is the mean of
// what it covers. Of a single texel it has no pixels.
template <class T>
Pixels<T> HalfOf(const Pixels<T>& whole);

}  // namespace rendering
