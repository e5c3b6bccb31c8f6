#pragma once

#include <cstdint>
#include <vector>

#include "math/Vector.h"
#include "util/Array2D.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

namespace physics {

// An outline in its own box, drawn to a fine raster: the box spans -STEPS to STEPS along both axes. What
// congruent outlines differ by for standing in different places, which is rounding, falls under the raster,
// so that they share their field.
struct RasterOutline {
    static constexpr int STEPS = 4096;

    // `vertices` relative to the box's centre, along its axes.
    RasterOutline(const math::Vec2List& vertices, math::Vec2 halfSize);

    math::Vec2 GetVertex(size_t i) const;
    friend bool operator==(const RasterOutline& a, const RasterOutline& b) {
        return a.halfSize == b.halfSize && a.steps == b.steps;
    }

    math::Vec2 halfSize;  // m, of the box, to one part in STEPS
    std::vector<math::TVector2<int16_t>> steps;
};

// Signed distances of an outline, negative inside, sampled into SIZE by SIZE cells over its box and a margin
// of two cells, at least 0.2 m, on each side, so that every sample inside the box has four neighbours and the
// corners lie outside the outline. Exact at the cells' centres. Never changes once built.
class DistanceField : public util::Pointee {
  public:
    using Cells = util::Array2D<float, util::VectorPOD<float>>;

    static constexpr int SIZE = 128;  // cells along each side, whatever the outline's size

    // The field of the outline, which others with the same figures share. It depends on these alone, and so
    // not on who asks first.
    static util::SharedPtr<const DistanceField> Get(const RasterOutline& outline);

    // What the field covers: half of its size, for a box of this half size.
    static math::Vec2 GetReach(math::Vec2 halfSize);

    explicit DistanceField(const RasterOutline& outline);
    ~DistanceField() noexcept(false) override;

    const Cells& GetCells() const { return m_cells; }  // m
    const RasterOutline& GetOutline() const { return m_outline; }

  private:
    RasterOutline m_outline;
    Cells m_cells;
};

}  // namespace physics
