#pragma once

#include "rendering/Image.h"

namespace app {

// The picture of one drop's field, 64 by 64. Red, blue and alpha hold the field f, clamped to 0 to 1; green
// holds f * `factor` modulo 256: a field that goes on rising where the others have long saturated, and wraps
// round near the middle.
rendering::ImageRGBA32Ptr MakeMetaBallImage(float factor);

}  // namespace app
