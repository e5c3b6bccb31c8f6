#pragma once

#include "math/Vector.h"
#include "rendering/Texture.h"

namespace rendering {

// A ramp over the alpha of a distance texture: 1 at alphas up to center - width / 2, 0 from center + width /
// 2 on, straight in between.
struct DistanceRamp {
    float center;
    float width;  // above 0
};

// Draws a shape from its distance texture without shaders, yet with smooth edges: for the length of a scope
// the texture units compute, for each pixel with alpha a of the distance texture,
//
//     alpha = primary.alpha * outline(a)
//     rgb   = rim + (primary - rim) * fill(a)
//
// A ramp of slope k is clamp(k * (t - a)) with t the alpha where it reaches 0. The first unit subtracts and
// multiplies by 4, as much as a unit can; each further one multiplies by at most 4 again; the last one mixes
// the colours. So the steepest ramp has the slope 4^(units - 1); steeper ones are drawn as steep as that.
class ScopedDistanceCombiner {
  public:
    // Whether there are the units for it: 4, which allows for a slope of 64.
    static bool IsUsable();

    // `primary` is the renderer's colour at drawing.
    ScopedDistanceCombiner(const TexturePtr& distances, DistanceRamp outline, DistanceRamp fill,
                           const math::Vec4& rim);
    ~ScopedDistanceCombiner();
    ScopedDistanceCombiner(const ScopedDistanceCombiner&) = delete;
    ScopedDistanceCombiner& operator=(const ScopedDistanceCombiner&) = delete;

  private:
    TexturePtr m_distances;
    int m_nUnits;
};

}  // namespace rendering
