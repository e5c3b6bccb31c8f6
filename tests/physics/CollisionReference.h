#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/Particle.h"

namespace test {

// What a contact is made of, to compare runs.
struct FoundContact {
    uint32_t geomA, geomB;  // IDs, in order
    uint32_t index;
    math::Vec2 point, normal;
    math::real penetration;

    friend bool operator==(const FoundContact& a, const FoundContact& b) {
        return a.geomA == b.geomA && a.geomB == b.geomB && a.index == b.index && a.point == b.point &&
               a.normal == b.normal && a.penetration == b.penetration;
    }
    friend std::ostream& operator<<(std::ostream& out, const FoundContact& c) {
        return out << c.geomA << "-" << c.geomB << "#" << c.index << " at (" << c.point.x << ", " << c.point.y
                   << ") n (" << c.normal.x << ", " << c.normal.y << ") depth " << c.penetration << "\n";
    }
};
using FoundContacts = std::vector<FoundContact>;

// The contacts of the world by going over all pairs, pass after pass.
FoundContacts CollideByBruteForce(const physics::BodyList& bodies,
                                  const physics::ParticleList& particles = physics::ParticleList());

// The same from the collider.
FoundContacts Collide(physics::Collider& collider, const physics::BodyList& bodies,
                      const physics::ParticleList& particles = physics::ParticleList());

// The first difference of two lists of contacts, in words; empty when there is none.
std::string FindDifference(const FoundContacts& found, const FoundContacts& expected);

}  // namespace test
