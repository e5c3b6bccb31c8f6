#include "physics/OutlinePieces.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr size_t MOST_PIECES = 200;  // of an outline

// Whether the way from `begin` to `end`, which starts along `first`, leads on to `next` without a corner, and
// turns aside by no more than `limit`.
bool GoesOn(Vec2 begin, Vec2 first, Vec2 end, Vec2 next, real limit) {
    const real aside = math::Cross(first, next - begin), along = math::Dot(first, next - end);
    return along > std::fabs(math::Cross(first, next - end)) &&
           aside * aside < limit * limit * math::LengthSquared(first);
}

void CutEdge(Vec2 begin, Vec2 end, real pieceLength, OutlinePieces& pieces) {
    const Vec2 edge = end - begin;
    const real length = math::Length(edge);
    if (!(length > 0)) return;
    const size_t used = pieces.size();
    const real most = static_cast<real>(used < MOST_PIECES ? MOST_PIECES - used : 1);
    const real wanted = std::min(std::max(std::round(length / pieceLength), 1.0f), most);
    const Vec2 normal(edge.y / length, -edge.x / length);
    for (real k = 0; k < wanted; ++k)
        pieces.push_back({begin + edge * ((k + 0.5f) / wanted), normal, length / wanted});
}

}  // namespace

OutlinePieces CutPolygon(const math::Vec2List& vertices, real length) {
    constexpr real STRAIGHT = 0.1f;  // pieces' lengths that an edge may turn aside
    OutlinePieces pieces;
    const size_t count = vertices.size();
    for (size_t i = 0; i < count;) {
        const Vec2 begin = vertices[i];
        const Vec2 first = vertices[i + 1 < count ? i + 1 : 0] - begin;
        Vec2 end = begin + first;
        for (++i; i < count; ++i) {
            const Vec2 next = vertices[i + 1 < count ? i + 1 : 0];
            if (!GoesOn(begin, first, end, next, STRAIGHT * length)) break;
            end = next;
        }
        CutEdge(begin, end, length, pieces);
    }
    return pieces;
}

OutlinePieces CutCircle(Vec2 center, real radius, real length) {
    const real wanted = std::max(math::TWO_PI * radius / length, 8.0f);
    const int count = static_cast<int>(std::min(wanted, static_cast<real>(MOST_PIECES)));
    const real angle = math::TWO_PI / static_cast<real>(count);
    OutlinePieces pieces;
    for (int i = 0; i < count; ++i) {
        const Vec2 normal(std::cos(angle * static_cast<real>(i)), std::sin(angle * static_cast<real>(i)));
        pieces.push_back({center + normal * radius, normal, angle * radius});
    }
    return pieces;
}

}  // namespace physics
