#pragma once

#include <cstdint>

namespace physics {

// Names a contact across steps: the pair of geoms and which feature of the pair touches. The numbers of the
// features are chosen by the collision passes.
struct ContactID {
    ContactID() = default;
    ContactID(uint32_t geomA, uint32_t geomB, uint32_t index_)
        : geom0(geomA < geomB ? geomA : geomB),
          geom1(geomA < geomB ? geomB : geomA),
          index(index_),
          hash(geom1 * 3625334849u + geom0 * 2376512323u + index * 3407524639u) {}

    uint32_t geom0 = 0;  // the smaller ID of the two geoms
    uint32_t geom1 = 0;  // the greater one
    uint32_t index = 0;
    uint32_t hash = 0;  // of the three fields above

    friend bool operator==(const ContactID& a, const ContactID& b) {
        return a.geom0 == b.geom0 && a.geom1 == b.geom1 && a.index == b.index;
    }
};

}  // namespace physics
