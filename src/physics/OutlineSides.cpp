#include "physics/OutlineSides.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "math/BoundingBox.h"
#include "math/Geometry.h"

namespace physics {

using math::real;
using math::Vec2;
using math::Vec2List;
using narrow::Float8;

namespace {

constexpr real NOWHERE = -std::numeric_limits<real>::max();  // m, below the distance of any point

constexpr real STRAIGHT = 1e-5f;        // of the extent: how far off a side its vertices may lie
constexpr size_t MOST_JOINED = 64;      // edges that become one side
constexpr real MOST_OPPOSITE = 0.005f;  // m, some times the depth at which shapes rest on each other
constexpr size_t FEW_SIDES = 12;        // which are all looked at
constexpr uint32_t BLOCK = 8;           // tiles along each side of a block
constexpr real SIDES_PER_TILE = 0.75f;  // of those along the outline
constexpr uint32_t MOST_BLOCKS = 8;     // along each side of the grid

math::BoundingBox2f GetBox(const Vec2List& vertices) {
    math::BoundingBox2f box;
    for (const Vec2 v : vertices) box.Extend(v);
    return box;
}

// Whether the vertices from `first` to `last`, which may be the first one again, stand in a row.
bool IsStraight(const Vec2List& vertices, size_t first, size_t last, real tolerance) {
    const Vec2 start = vertices[first], chord = vertices[last % vertices.size()] - start;
    const real length = math::Length(chord);
    real before = 0;
    for (size_t i = first + 1; i < last; ++i) {
        const Vec2 r = vertices[i] - start;
        const real place = math::Dot(chord, r);
        if (!(std::fabs(math::Cross(chord, r)) <= tolerance * length && place > before)) return false;
        before = place;
    }
    return before < length * length;
}

// One side, ready to be measured.
struct Side {
    Vec2 start;
    Vec2 way;  // to its end

    // From the nearest of its points, which lies at this share of the way.
    Vec2 GetWayFrom(Vec2 point, real& share) const {
        const Vec2 r = point - start;
        share = std::min(std::max(math::Dot(way, r) / math::LengthSquared(way), 0.0f), 1.0f);
        return r - way * share;
    }
    real GetDistance(Vec2 point) const {
        real share;
        return math::Length(GetWayFrom(point, share));
    }
    Vec2 GetNormal() const { return math::Normalized(Vec2(way.y, -way.x)); }
};

Side GetSide(const Vec2List& vertices, const util::VectorPOD<uint16_t>& starts, size_t i) {
    const Vec2 start = vertices[starts[i]];
    return {start, vertices[starts[i + 1]] - start};
}

}  // namespace

OutlineSides::OutlineSides(const Vec2List& vertices) {
    const math::BoundingBox2f box = GetBox(vertices);
    const size_t n = vertices.size();
    const real tolerance = STRAIGHT * math::Length(box.GetSize());
    util::VectorPOD<uint16_t> starts;
    for (size_t first = 0; first < n;) {
        starts.push_back(static_cast<uint16_t>(first));
        size_t last = first + 1;
        while (last < n && last - first < MOST_JOINED && IsStraight(vertices, first, last + 1, tolerance))
            ++last;
        first = last;
    }
    starts.push_back(0);
    m_starts.assign(starts.begin(), starts.end());
    if (GetSideCount() <= FEW_SIDES) {
        MakeLines(vertices);
        return;
    }
    const real tiles = std::sqrt(static_cast<real>(GetSideCount())) / SIDES_PER_TILE;
    m_blocks = std::min(static_cast<uint32_t>(tiles) / BLOCK + 1, MOST_BLOCKS);
    m_low = box.min;
    const auto count = static_cast<real>(m_blocks * BLOCK);
    m_tilesPerMetre = Vec2(count / box.GetSize().x, count / box.GetSize().y);
}

OutlineSides::~OutlineSides() noexcept(false) = default;

void OutlineSides::MakeLines(const Vec2List& vertices) {
    m_isSimple = true;
    for (size_t i = 0; i < GetSideCount(); ++i) {
        m_isSimple = m_isSimple && !IsReflex(vertices, i);
        m_lines.push_back(MakeLine(vertices, i));
    }
}

OutlineSides::Line OutlineSides::MakeLine(const Vec2List& vertices, size_t i) const {
    const Side side = GetSide(vertices, m_starts, i);
    const Vec2 normal = side.GetNormal();
    return {normal, math::Dot(normal, side.start)};
}

// ---- finding the nearest -------------------------------------------------------------------------------

// Of a side that is nearest at a point within it, the left is inside; at its end, what lies in the corner of
// a reflex angle is.
OutlineSides::Place OutlineSides::Find(const Vec2List& vertices, Vec2 point, real& distance,
                                       Vec2& normal) const {
    if (m_isSimple) return FindByLines(point, distance, normal);
    const Choice choice = Choose(vertices, point);
    if (choice.begin == choice.end) return Place::DEEP;
    real least = std::numeric_limits<real>::infinity(), share = 0;
    size_t nearest = 0;
    Vec2 way;
    for (const uint16_t* i = choice.begin; i != choice.end; ++i) {
        real at;
        const Vec2 from = GetSide(vertices, m_starts, *i).GetWayFrom(point, at);
        const real distSq = math::LengthSquared(from);
        if (!(distSq < least)) continue;
        least = distSq;
        nearest = *i;
        share = at;
        way = from;
    }
    if (!(least > 0 && std::isfinite(least))) return Place::OUTSIDE;
    const Side side = GetSide(vertices, m_starts, nearest);
    const bool isAtEnd = share == 0 || share == 1;
    const bool isInside =
        isAtEnd ? IsReflex(vertices, share == 0 ? nearest : nearest + 1) : math::Cross(side.way, way) > 0;
    if (!isInside) return Place::OUTSIDE;
    distance = -std::sqrt(least);
    normal = isAtEnd ? way / distance : side.GetNormal();
    return Place::INSIDE;
}

// Within a convex outline the nearest line is the nearest side.
OutlineSides::Place OutlineSides::FindByLines(Vec2 point, real& distance, Vec2& normal) const {
    real greatest = NOWHERE;
    for (const Line& line : m_lines) {
        const real here = line.GetDistance(point);
        if (!(here > greatest)) continue;
        greatest = here;
        normal = line.normal;
    }
    if (!(greatest < 0 && greatest > NOWHERE)) return Place::OUTSIDE;
    distance = greatest;
    return Place::INSIDE;
}

// The same, operation by operation.
uint32_t OutlineSides::FindInside(Float8 x, Float8 y, real* distances, Vec2* normals) const {
    alignas(16) real all[FEW_SIDES][POINTS], greatest[POINTS];
    const Float8 nowhere = Float8::Fill(NOWHERE);
    Float8 most = nowhere;
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const Line& line = m_lines[i];
        const Float8 here =
            Float8::Fill(line.normal.x) * x + Float8::Fill(line.normal.y) * y - Float8::Fill(line.offset);
        most = Max(most, here);
        Store(all[i], here);
    }
    const uint32_t inside = MaskLess(most, Float8::Zero()) & MaskLess(nowhere, most);
    if (inside == 0) return 0;
    Store(greatest, most);
    for (uint32_t rest = inside; rest != 0; rest &= rest - 1) {
        const auto k = static_cast<uint32_t>(__builtin_ctz(rest));
        size_t i = 0;
        while (all[i][k] != greatest[k]) ++i;
        distances[k] = greatest[k];
        normals[k] = m_lines[i].normal;
    }
    return inside;
}

// Whether the outline turns inward where a side begins.
bool OutlineSides::IsReflex(const Vec2List& vertices, size_t side) const {
    const size_t count = GetSideCount();
    const size_t next = side % count;
    return math::Cross(GetSide(vertices, m_starts, (next + count - 1) % count).way,
                       GetSide(vertices, m_starts, next).way) < 0;
}

// Where a corner of one outline lies beside a corner of the other, the nearest side may be the one that it
// stands flush with, and the way out of that leads nowhere.
bool OutlineSides::FindOpposite(const Vec2List& vertices, Vec2 point, const Corner& corner, real& distance,
                                Vec2& normal) const {
    const Choice choice = Choose(vertices, point);
    real least = MOST_OPPOSITE;
    bool isFound = false;
    for (const uint16_t* i = choice.begin; i != choice.end; ++i) {
        const Line line = m_lines.empty() ? MakeLine(vertices, *i) : m_lines[*i];
        const real depth = -line.GetDistance(point);
        if (!(depth > 0 && depth < least) || !corner.PointsAt(line.normal)) continue;
        const Side side = GetSide(vertices, m_starts, *i);
        const real length = math::Length(side.way);
        const real place = math::Dot(side.way, point - side.start) / length;
        if (!(place > -least && place < length + least)) continue;
        least = depth;
        distance = -depth;
        normal = line.normal;
        isFound = true;
    }
    return isFound;
}

// ---- the grid ------------------------------------------------------------------------------------------

// With R half the diagonal of a tile, the side nearest to any of its points is at most 2 R farther from the
// middle than the side nearest to that. Blocks of tiles narrow the choice down first.
class OutlineSides::GridBuilder {
  public:
    GridBuilder(const OutlineSides& sides, const Vec2List& vertices) : m_sides(sides), m_vertices(vertices) {
        for (size_t i = 0; i < sides.GetSideCount(); ++i) m_all.push_back(static_cast<uint16_t>(i));
    }

    void Build() {
        const uint32_t blocks = m_sides.m_blocks;
        m_sides.m_begin.reserve(blocks * blocks * BLOCK * BLOCK + 1);
        util::VectorPOD<uint16_t> choices;
        for (uint32_t block = 0; block < blocks * blocks; ++block) {
            const uint32_t left = block % blocks * BLOCK, bottom = block / blocks * BLOCK;
            Choose(m_all, left, bottom, BLOCK, m_ofBlock);
            for (uint32_t tile = 0; tile < BLOCK * BLOCK; ++tile) {
                m_sides.m_begin.push_back(static_cast<uint32_t>(choices.size()));
                const real least = Choose(m_ofBlock, left + tile % BLOCK, bottom + tile / BLOCK, 1, m_ofTile);
                if (least > GetRadius(1)) continue;  // deep inside, or far out
                for (const uint16_t i : m_ofTile) choices.push_back(i);
            }
        }
        m_sides.m_begin.push_back(static_cast<uint32_t>(choices.size()));
        m_sides.m_choices.assign(choices.begin(), choices.end());  // takes no more room than they need
    }

  private:
    real GetRadius(uint32_t tiles) const {
        return static_cast<real>(tiles) / 2 *
               math::Length(Vec2(1 / m_sides.m_tilesPerMetre.x, 1 / m_sides.m_tilesPerMetre.y));
    }

    // Those of `from` that may be the nearest in a square of so many tiles; returns the middle's distance.
    real Choose(const util::VectorPOD<uint16_t>& from, uint32_t left, uint32_t bottom, uint32_t tiles,
                util::VectorPOD<uint16_t>& chosen) {
        constexpr real ROUNDING = 1.0001f;
        const real half = static_cast<real>(tiles) / 2;
        const Vec2 middle(m_sides.m_low.x + (static_cast<real>(left) + half) / m_sides.m_tilesPerMetre.x,
                          m_sides.m_low.y + (static_cast<real>(bottom) + half) / m_sides.m_tilesPerMetre.y);
        m_distances.clear();
        real least = std::numeric_limits<real>::infinity();
        for (const uint16_t i : from) {
            m_distances.push_back(GetSide(m_vertices, m_sides.m_starts, i).GetDistance(middle));
            least = std::min(least, m_distances.back());
        }
        const real limit = (least + 2 * GetRadius(tiles)) * ROUNDING;
        chosen.clear();
        for (size_t k = 0; k < from.size(); ++k) {
            if (m_distances[k] <= limit) chosen.push_back(from[k]);
        }
        return least;
    }

    const OutlineSides& m_sides;
    const Vec2List& m_vertices;
    util::VectorPOD<uint16_t> m_all, m_ofBlock, m_ofTile;
    util::VectorPOD<real> m_distances;
};

OutlineSides::Choice OutlineSides::Choose(const Vec2List& vertices, Vec2 point) const {
    if (m_choices.empty()) {
        if (m_blocks == 0) {
            for (size_t i = 0; i < GetSideCount(); ++i) m_choices.push_back(static_cast<uint16_t>(i));
        } else {
            GridBuilder(*this, vertices).Build();
        }
    }
    if (m_blocks == 0) return {m_choices.data(), m_choices.data() + m_choices.size()};
    const auto getTile = [&](real place) {
        const real last = static_cast<real>(m_blocks * BLOCK - 1);
        return static_cast<uint32_t>(place > 0 ? (place < last ? place : last) : 0);  // 0 for a NaN
    };
    const uint32_t x = getTile((point.x - m_low.x) * m_tilesPerMetre.x);
    const uint32_t y = getTile((point.y - m_low.y) * m_tilesPerMetre.y);
    const uint32_t block = y / BLOCK * m_blocks + x / BLOCK;
    const uint32_t* const begin = m_begin.data() + block * BLOCK * BLOCK + y % BLOCK * BLOCK + x % BLOCK;
    return {m_choices.data() + begin[0], m_choices.data() + begin[1]};
}

}  // namespace physics
