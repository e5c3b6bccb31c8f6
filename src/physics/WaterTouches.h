#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/NeighborGrid.h"
#include "physics/WaterTouch.h"
#include "util/VectorPOD.h"

namespace physics {

// Which drops are near which bodies in a step.
//
// Water flows out from under what comes down on it, but the last drops have nowhere to go and would bear any
// weight like gravel. So what comes down on a drop that lies on something, and leaves it less room than a
// drop needs, does not feel it: the body sinks over it, and what water remains there is that in narrow gaps
// (WaterFilm).
class WaterTouches {
  public:
    static constexpr uint32_t NONE = 0xFFFFFFFFu;

    struct Settings {
        math::real reach;    // m, of touches
        math::real spacing;  // m, of drops at rest
        math::Vec2 down;     // of length 1, or zero without gravity
    };
    struct Found {
        uint32_t drop;  // in the order of the grid
        uint32_t body;  // its place in the list of bodies
        Geom* geom;     // of the body
        Probe probe;
        bool isLet;         // body and drop pass through each other
        uint32_t previous;  // of the same drop, or NONE
    };

    // Body by body, and drop by drop.
    void Find(const NeighborGrid& grid, const BodyList& bodies, const Settings& settings);

    const util::VectorPOD<Found>& GetAll() const { return m_found; }
    // Those of the body at this place of the list.
    const Found* Begin(uint32_t body) const { return m_found.data() + m_begins[body]; }
    const Found* End(uint32_t body) const { return m_found.data() + m_begins[body + 1]; }

  private:
    void Add(const Settings& settings, const BodyList& bodies, const Found& found);

    util::VectorPOD<Found> m_found;
    util::VectorPOD<uint32_t> m_begins;  // per body: the first of its touches; and their end
    util::VectorPOD<uint32_t> m_last;    // per drop: the last of its touches, or NONE
};

}  // namespace physics
