#include "app/drawing/MetaBall.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using rendering::ImageRGBA32Ptr;
using rendering::RGBA32;

// Field of texel (x, y) in double precision.
double Field(int x, int y) {
    const double u = x / 63.0 * 8 - 4, v = y / 63.0 * 8 - 4;
    return (1 / (u * u + v * v) - 0.0625) / 0.9375;
}

TEST(MetaBallTest, RedBlueAndAlphaHoldTheClampedField) {
    const ImageRGBA32Ptr image = app::MakeMetaBallImage(10);
    ASSERT_EQ(image->GetWidth(), 64u);
    for (int y = 1; y < 63; ++y) {
        for (int x = 1; x < 63; ++x) {
            const RGBA32 texel = (*image)(static_cast<size_t>(x), static_cast<size_t>(y));
            const double expected = std::fmin(std::fmax(Field(x, y), 0), 1) * 255;
            ASSERT_NEAR(texel.x, expected, 0.51) << x << " " << y;
            ASSERT_EQ(texel.x, texel.z);
            ASSERT_EQ(texel.x, texel.w);
        }
    }
}

TEST(MetaBallTest, TheBorderIsEmpty) {
    const ImageRGBA32Ptr image = app::MakeMetaBallImage(10);
    for (size_t i = 0; i < 64; ++i) {
        EXPECT_EQ((*image)(i, 0), RGBA32());
        EXPECT_EQ((*image)(63, i), RGBA32());
        EXPECT_EQ((*image)(i, 63), RGBA32());
    }
}

TEST(MetaBallTest, GreenRisesWithTheFactorAndWrapsNearTheMiddle) {
    const ImageRGBA32Ptr image = app::MakeMetaBallImage(10);
    bool wraps = false;
    for (int x = 1; x < 63; ++x) {
        const double value = Field(x, 20) * 10;
        const double expected = std::floor(value + 0.5);
        const double wrapped = expected - 256 * std::floor(expected / 256);
        EXPECT_NEAR((*image)(static_cast<size_t>(x), 20).y, wrapped, 1) << x;
        wraps = wraps || Field(x, 31) * 10 > 256;
    }
    EXPECT_TRUE(wraps);
    // The middle: f = 131.6 at u = v = 4 / 63, times 10.
    EXPECT_EQ((*image)(31, 31).y, static_cast<int>(std::floor(Field(31, 31) * 10 + 0.5)) % 256);
    EXPECT_EQ((*app::MakeMetaBallImage(0))(31, 31).y, 0);
}

}  // namespace
