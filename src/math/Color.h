#pragma once

#include "math/Vector.h"

namespace math {

// Hue in degrees from 0 to 360, saturation and lightness in 0 to 1; red, green and blue in 0 to 1.
// Formulas: Foley et al., Computer Graphics: Principles and Practice, section 13.3.
Vec3 RGBtoHSL(Vec3 rgb);
Vec3 HSLtoRGB(Vec3 hsl);

}  // namespace math
