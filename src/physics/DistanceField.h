#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "math/Vector.h"
#include "util/Array2D.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

namespace util {
template <class T>
class Ahead;
}

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
// corners lie outside the outline. Exact at the cells' centres.
//
// The cells are made when something first asks for them. Of all fields together only so many keep theirs:
// those that nobody has asked for the longest give them up, and make the same ones again when asked.
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

    // m; good until the cells of another field have been asked for.
    const Cells& GetCells() const {
        if (m_lastUse != s_builds) Use();
        return m_cells;
    }
    const RasterOutline& GetOutline() const { return m_outline; }

    // Begins to make the cells in the program's second thread, for the first who asks.
    void BuildAhead() const;

    // How many fields may keep their cells, at least 1.
    static void SetMostKept(size_t fields);
    static size_t GetMostKept() { return s_mostKept; }
    static size_t GetKeptCount() { return s_kept; }

  private:
    void Use() const;
    void Build() const;
    void Drop() const;
    static void DropOldest();

    static constexpr size_t BYTES = size_t(SIZE) * SIZE * sizeof(float);
    static constexpr size_t BUDGET = size_t(300) << 20;  // bytes, of all cells

    inline static uint64_t s_builds = 1;  // how many there have been
    inline static size_t s_kept = 0;
    inline static size_t s_mostKept = BUDGET / BYTES;

    RasterOutline m_outline;
    mutable Cells m_cells;                                // none, or all
    mutable uint64_t m_lastUse = 0;                       // builds up to then; 0 without cells
    mutable std::unique_ptr<util::Ahead<Cells>> m_ahead;  // the cells in the making
};

}  // namespace physics
