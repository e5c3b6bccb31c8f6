#pragma once

#include <vector>

#include "physics/Polygon.h"

namespace test {

// True signed distance of a local point, by going over all edges; inside by counting crossings.
double TrueDistance(const physics::Polygon& polygon, math::Vec2 local);

// The map that spreading edges by an ordered set of cells gives: the textbook form of what DistanceMap
// does with buckets.
std::vector<float> SpreadBySet(const physics::Polygon& polygon);

}  // namespace test
