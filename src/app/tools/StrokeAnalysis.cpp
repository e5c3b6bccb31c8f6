#include "app/tools/StrokeAnalysis.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "math/BoundingBox.h"
#include "math/Geometry.h"

// Segment i of a stroke runs from point i to point i + 1.
namespace app {

using math::real;
using math::Vec2;
using math::Vec2List;

namespace {

// Greatest distance of a stroke from the line between its ends, as a part of that line's length.
constexpr real LINE_DEVIATION = 0.2f;
// A stroke is closed when its ends are nearer to each other than this part of its length.
constexpr real CLOSING_GAP = 1.0f / 8;

// Of a loop's points at most one in so many is taken off either end to let it close.
constexpr size_t MAX_TRIMMED_PART = 4;
// Of what is taken off, as a part of its length: a slightly shorter closing edge is not worth a long cut.
constexpr real TRIMMING_COST = 0.25f;

// Ends run side by side when they are nearer to each other than this part of the stroke's length, in
// directions whose cosine is at least this.
constexpr real SIDE_BY_SIDE = 1.0f / 16;
constexpr real SAME_DIRECTION = 0.5f;

// A range of segments, both ends included.
struct SegmentRange {
    size_t first;
    size_t last;
};

math::BoundingBox2f SegmentBox(const Vec2List& points, size_t segment) {
    math::BoundingBox2f box;
    box.Extend(points[segment]);
    box.Extend(points[segment + 1]);
    return box;
}

// One flag per segment: whether it crosses any other that is not its neighbour.
std::vector<bool> MarkCrossings(const Vec2List& points) {
    const size_t numSegments = points.size() - 1;
    std::vector<math::BoundingBox2f> boxes;
    boxes.reserve(numSegments);
    for (size_t i = 0; i < numSegments; ++i) boxes.push_back(SegmentBox(points, i));

    std::vector<bool> marked(numSegments, false);
    for (size_t i = 0; i < numSegments; ++i) {
        for (size_t j = i + 2; j < numSegments; ++j) {
            if (!boxes[i].Overlaps(boxes[j])) continue;
            if (!math::SegmentsIntersect(points[i], points[i + 1], points[j], points[j + 1])) continue;
            marked[i] = marked[j] = true;
        }
    }
    return marked;
}

// A path and a flag for each of its segments, whether it is crossed.
struct MarkedPath {
    Vec2List points;
    std::vector<bool> marked;
};

// The closed stroke, its closing edge included, as a path that begins and ends with its last crossed segment:
// what lies between two crossings is in one piece then, wherever the hand began.
MarkedPath MakeRing(const Vec2List& points, const std::vector<bool>& marked) {
    const size_t n = points.size();
    size_t start = marked.size() - 1;
    while (!marked[start]) --start;
    MarkedPath ring;
    for (size_t i = 0; i <= n + 1; ++i) ring.points.push_back(points[(start + i) % n]);
    for (size_t i = 0; i <= n; ++i) {
        const size_t segment = (start + i) % n;
        ring.marked.push_back(segment < marked.size() && marked[segment]);
    }
    return ring;
}

// The longest stretch from one crossed segment to the next, both included; the earlier one of equals. False
// when there is nothing between them.
bool FindLongestStretch(const MarkedPath& path, SegmentRange& range) {
    real longest = 0, length = 0;
    size_t from = path.marked.size();  // the last crossed segment so far
    for (size_t i = 0; i < path.marked.size(); ++i) {
        if (!path.marked[i]) {
            length += math::Length(path.points[i + 1] - path.points[i]);
            continue;
        }
        if (from < i && length > longest) {
            longest = length;
            range = {from, i};
        }
        from = i;
        length = 0;
    }
    return longest > 0;
}

// Where the two segments themselves cross; the endless lines through them could meet far away.
bool FindCrossing(const Vec2List& points, SegmentRange range, Vec2& crossing) {
    if (range.last < range.first + 2) return false;
    const Vec2 a1 = points[range.first], a2 = points[range.first + 1];
    const Vec2 b1 = points[range.last], b2 = points[range.last + 1];
    crossing = a1 == b1 ? a1 : a2;  // equal heads or tails cross there and give no point of their own
    return math::SegmentsIntersect(a1, a2, b1, b2, &crossing);
}

void AppendDistinct(Vec2List& points, Vec2 p) {
    if (points.empty() || points.back() != p) points.push_back(p);
}

// Whether the edge that closes the outline part [from, to] crosses another of its edges.
bool ClosingEdgeCrosses(const Vec2List& loop, size_t from, size_t to) {
    for (size_t i = from; i < to; ++i) {
        if (math::SegmentsIntersect(loop[to], loop[from], loop[i], loop[i + 1])) return true;
    }
    return false;
}

// A part of an outline, both ends included, and what it costs to close it: the length of the closing edge
// and some of what is taken off for it.
struct Closing {
    size_t from;
    size_t to;
    real cost;
};

Closing MakeClosing(const Vec2List& loop, size_t from, size_t to, real dropped) {
    return {from, to, math::Length(loop[to] - loop[from]) + TRIMMING_COST * dropped};
}

// Whether the path runs past its own start, near it and in its direction. Ends that only lean towards each
// other, as the lips of a vase, do not.
bool RunsPastItsStart(const Vec2List& loop) {
    const size_t last = loop.size() - 1, part = loop.size() / MAX_TRIMMED_PART;
    const real near = SIDE_BY_SIDE * PathLength(loop);
    for (size_t i = 0; i < part; ++i) {
        const Vec2 u = loop[i + 1] - loop[i];
        for (size_t j = last - part; j < last; ++j) {
            const Vec2 v = loop[j + 1] - loop[j];
            if (math::Length(loop[j + 1] - loop[i]) >= near) continue;
            if (math::Dot(u, v) > SAME_DIRECTION * math::Length(u) * math::Length(v)) return true;
        }
    }
    return false;
}

// A hand that runs past its start without crossing it, as in a spiral, leaves ends that lie side by side,
// and the closing edge would cut through one of them or leave a barb. Either end, or both alike, are taken
// back to where they close at the least cost; an outline that this does not help stays as it is.
void TrimOverlap(Vec2List& loop) {
    const size_t last = loop.size() - 1;
    if (!ClosingEdgeCrosses(loop, 0, last) && !RunsPastItsStart(loop)) return;
    Closing best{0, last, std::numeric_limits<real>::infinity()};
    real fromStart = 0, fromEnd = 0;  // lengths taken off so far
    const auto consider = [&](const Closing& closing) {
        if (closing.cost >= best.cost || ClosingEdgeCrosses(loop, closing.from, closing.to)) return;
        best = closing;
    };
    for (size_t n = 0; n <= loop.size() / MAX_TRIMMED_PART; ++n) {
        if (n > 0) {
            fromStart += math::Length(loop[n] - loop[n - 1]);
            fromEnd += math::Length(loop[last - n] - loop[last - n + 1]);
        }
        consider(MakeClosing(loop, 0, last - n, fromEnd));
        consider(MakeClosing(loop, n, last, fromStart));
        if (2 * n < last) consider(MakeClosing(loop, n, last - n, fromStart + fromEnd));
    }
    Vec2List kept;
    kept.assign(loop.begin() + best.from, loop.begin() + best.to + 1);
    loop.swap(kept);
}

// The outline of a range. Of a segment that is crossed only the end inside the loop belongs to it; the
// rest sticks out beyond the crossing.
Vec2List CutLoop(const Vec2List& points, const std::vector<bool>& marked, SegmentRange range) {
    const size_t from = marked[range.first] ? range.first + 1 : range.first;
    const size_t to = marked[range.last] ? range.last : range.last + 1;
    Vec2List loop;
    for (size_t i = from; i <= to; ++i) AppendDistinct(loop, points[i]);
    Vec2 crossing;
    if (FindCrossing(points, range, crossing)) {
        AppendDistinct(loop, crossing);
    } else {
        TrimOverlap(loop);
    }
    return loop;
}

}  // namespace

real PathLength(const Vec2List& points) {
    real length = 0;
    for (size_t i = 1; i < points.size(); ++i) length += math::Length(points[i] - points[i - 1]);
    return length;
}

real ClosedLength(const Vec2List& points) {
    return points.empty() ? 0 : PathLength(points) + math::Length(points.front() - points.back());
}

bool TestEraseLine(const Vec2List& stroke) {
    if (stroke.empty()) return false;
    const Vec2 a = stroke.front(), b = stroke.back();
    if (a == b) return false;
    const real limit = LINE_DEVIATION * math::Length(b - a);
    for (const Vec2 p : stroke) {
        if (math::Length(p - math::ClosestPointOnSegment(a, b, p)) > limit) return false;
    }
    return true;
}

namespace {

bool IsClosed(const Vec2List& points) {
    return math::Length(points.back() - points.front()) < CLOSING_GAP * PathLength(points);
}

// A stroke without a crossing whose ends lie apart is a loop all the same when it has run past its start.
LoopResult CloseOvershot(Vec2List& points) {
    if (points.size() < 2 * MAX_TRIMMED_PART || !RunsPastItsStart(points)) return LoopResult::Open;
    Vec2List loop = points;
    TrimOverlap(loop);
    if (!IsClosed(loop)) return LoopResult::Open;
    points.swap(loop);
    return LoopResult::Loop;
}

// As a snail's shell does, which no trimming closes.
bool CrossesItself(const Vec2List& loop) {
    if (loop.size() < 3) return false;
    const std::vector<bool> marked = MarkCrossings(loop);
    return std::find(marked.begin(), marked.end(), true) != marked.end() ||
           ClosingEdgeCrosses(loop, 0, loop.size() - 1);
}

// Between crossings: the biggest lobe is what the eye sees.
LoopResult CutBiggestLobe(Vec2List& points, const MarkedPath& path) {
    SegmentRange range{};
    if (!FindLongestStretch(path, range)) {
        points.clear();
        return LoopResult::Tangled;
    }
    points = CutLoop(path.points, path.marked, range);
    return LoopResult::Loop;
}

}  // namespace

static LoopResult FindLoop(Vec2List& points) {
    const bool isClosed = IsClosed(points);
    const std::vector<bool> marked = MarkCrossings(points);
    const bool isCrossed = std::find(marked.begin(), marked.end(), true) != marked.end();
    if (isCrossed)
        return CutBiggestLobe(points, isClosed ? MakeRing(points, marked) : MarkedPath{points, marked});
    if (!isClosed) return CloseOvershot(points);
    points = CutLoop(points, marked, {0, marked.size() - 1});
    return LoopResult::Loop;
}

LoopResult ExtractLoop(Vec2List& points) {
    if (points.size() < 2) return LoopResult::Open;
    Vec2List loop = points;
    const LoopResult result = FindLoop(loop);
    if (result == LoopResult::Loop && CrossesItself(loop)) return LoopResult::Open;
    points.swap(loop);
    return result;
}

}  // namespace app
