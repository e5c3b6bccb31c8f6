#include "math/Color.h"

#include <algorithm>

namespace math {

Vec3 RGBtoHSL(Vec3 rgb) {
    const real high = std::max({rgb.x, rgb.y, rgb.z});
    const real low = std::min({rgb.x, rgb.y, rgb.z});
    const real chroma = high - low;
    const real lightness = (high + low) / 2;
    if (chroma == 0) return {0, 0, lightness};
    real sextant;
    if (high == rgb.x) {
        sextant = (rgb.y - rgb.z) / chroma + (rgb.y < rgb.z ? 6 : 0);
    } else if (high == rgb.y) {
        sextant = (rgb.z - rgb.x) / chroma + 2;
    } else {
        sextant = (rgb.x - rgb.y) / chroma + 4;
    }
    return {sextant * 60, chroma / (1 - std::fabs(2 * lightness - 1)), lightness};
}

Vec3 HSLtoRGB(Vec3 hsl) {
    const real chroma = (1 - std::fabs(2 * hsl.z - 1)) * hsl.y;
    const real sextant = std::fmod(hsl.x, 360.0f) / 60;
    const real second = chroma * (1 - std::fabs(std::fmod(sextant, 2.0f) - 1));
    const real base = hsl.z - chroma / 2;
    const Vec3 table[6] = {{chroma, second, 0}, {second, chroma, 0}, {0, chroma, second},
                           {0, second, chroma}, {second, 0, chroma}, {chroma, 0, second}};
    return table[std::clamp(static_cast<int>(sextant), 0, 5)] + Vec3(base, base, base);
}

}  // namespace math
