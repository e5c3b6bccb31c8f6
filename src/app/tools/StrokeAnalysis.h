#pragma once

#include "math/Vector.h"

// What a free-hand stroke means, decided from its points alone. Points are world coordinates in drawing
// order, no two equal ones in a row.
namespace app {

// The length of the path through the points in order, not closed; 0 for fewer than two.
math::real PathLength(const math::Vec2List& points);

// The same with the edge that closes the path.
math::real ClosedLength(const math::Vec2List& points);

// Whether the stroke is an eraser line: no point lies farther from the segment between its ends than a
// fifth of that segment's length. Two points always pass. A stroke that ends exactly where it began has no
// direction and is a loop, never a line.
bool TestEraseLine(const math::Vec2List& stroke);

enum class LoopResult {
    Open = 0,    // the ends lie too far apart, or turns of the stroke between them; the points are unchanged
    Loop = 1,    // the points are now the outline of the loop, not repeating the first at the end
    Tangled = 2  // nothing is left between the crossings
};

// Replaces a stroke by the loop that the eye sees in it: one that runs past its start is cut off where it
// meets that, of several lobes the biggest is left. Ends that neither cross nor run side by side stay as
// they are and are joined by a straight edge.
LoopResult ExtractLoop(math::Vec2List& points);

}  // namespace app
