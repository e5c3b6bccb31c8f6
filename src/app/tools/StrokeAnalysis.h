#pragma once

#include "math/Vector.h"

// What a free-hand stroke means, decided from its points alone. Points are world coordinates in drawing
// order, no two equal ones in a row.
namespace app {

// The length of the path through the points in order, not closed; 0 for fewer than two.
math::real PathLength(const math::Vec2List& points);

// Whether the stroke is an eraser line: no point lies farther from the segment between its ends than a
// fifth of that segment's length. Two points always pass. A stroke that ends exactly where it began has no
// direction and is a loop, never a line.
bool TestEraseLine(const math::Vec2List& stroke);

enum class LoopResult {
    Open = 0,    // the ends lie too far apart; the points are unchanged
    Loop = 1,    // the points are now the outline of the loop, not repeating the first at the end
    Tangled = 2  // nothing is left between the crossings
};

// Replaces a stroke by the loop round its half-length, cut off where the stroke crosses itself.
LoopResult ExtractLoop(math::Vec2List& points);

}  // namespace app
