#pragma once

#include <cstddef>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds the contacts of flat sides that others stand for, and marks them (Contact::m_implied), so that the
// solver can leave them out.
//
// Where two shapes touch along a line, the overlap at any place of it, and how fast it grows, is what the
// lever makes of those at the two outermost contacts: what holds these holds all between them. The one
// nearest to the middle is kept as well. It carries the load straight, without turning anything, and the
// sweeps converge the sooner: towers sway half as far as with the outer two alone, and less than with all.
//
// What a contact carried in the step before goes over to the outer two by the lever, with the same force and
// torque.
class ContactReduction {
  public:
    // The contacts of a pair of geoms stand side by side.
    void Mark(const ContactPool& contacts);

  private:
    struct Touch {
        Contact* contact;
        math::real place;  // m, along the side
    };

    void FindParallel(const ContactPool& contacts, size_t first, size_t end);
    void MarkBetween();

    util::VectorPOD<Touch> m_touches;  // those of one pair whose normals agree with the first one's
};

}  // namespace physics
