#pragma once

#include <gtest/gtest.h>

#include "math/Vector.h"
#include "rendering/Image.h"

namespace test {

// A window with a GL context, for tests that look at pixels; skipped where there is no display. The window is
// made once per test program. Every test starts with a black frame, the identity on both matrices stacks (so
// x and y from -1 to 1 span the frame) and the state of a new context as far as the tests change it.
class GlTest : public testing::Test {
  public:
    static constexpr int SIZE = 128;  // pixels, both sides

  protected:
    void SetUp() override;

    // A new window with a context of its own, as after a change of the resolution. All GL objects must have
    // been released.
    static void Recreate();

    // One unit is one pixel, the origin at the lower left.
    static void UsePixelUnits();

    static rendering::ImageRGBA32Ptr ReadFrame();

    // The greatest difference of any channel, over all pixels, and how many differ by more than `tolerance`.
    static int GreatestDifference(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b);
    static int CountDifferences(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b,
                                int tolerance);
};

}  // namespace test
