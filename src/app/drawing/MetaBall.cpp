#include "app/drawing/MetaBall.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace app {

namespace {

constexpr int SIDE = 64;          // texels
constexpr float EXTENT = 4;       // the picture spans -4 to 4 particle radii
constexpr float FLOOR = 0.0625f;  // 1 / EXTENT^2: the field is 0 there, and 1 at a distance of one radius

float Field(float u, float v) {
    return (1 / (u * u + v * v) - FLOOR) / (1 - FLOOR);
}

unsigned char SaturatedByte(float field) {
    return static_cast<unsigned char>(std::floor(std::clamp(field, 0.0f, 1.0f) * 255 + 0.5f));
}

// The wrap near the middle is meant: it gives the water its inner rings.
unsigned char WrappedByte(float value) {
    if (!std::isfinite(value)) return 0;
    const double rounded = std::floor(static_cast<double>(value) + 0.5);
    return static_cast<unsigned char>(rounded - 256 * std::floor(rounded / 256));
}

}  // namespace

rendering::ImageRGBA32Ptr MakeMetaBallImage(float factor) {
    const rendering::ImageRGBA32Ptr image = new rendering::ImageRGBA32(SIDE, SIDE, rendering::RGBA32());
    for (int y = 1; y < SIDE - 1; ++y) {
        for (int x = 1; x < SIDE - 1; ++x) {
            const float u = static_cast<float>(x) / (SIDE - 1) * 2 * EXTENT - EXTENT;
            const float v = static_cast<float>(y) / (SIDE - 1) * 2 * EXTENT - EXTENT;
            const float field = Field(u, v);
            const unsigned char byte = SaturatedByte(field);
            (*image)(static_cast<size_t>(x), static_cast<size_t>(y)) = {byte, WrappedByte(field * factor),
                                                                        byte, byte};
        }
    }
    return image;
}

}  // namespace app
