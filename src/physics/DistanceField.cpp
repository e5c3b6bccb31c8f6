#include "physics/DistanceField.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <vector>

#include "math/Geometry.h"
#include "physics/FlushToZero.h"
#include "util/Ahead.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr int SIZE = DistanceField::SIZE;
constexpr real MIN_CELL = 0.1f;   // m, of the cells of margin
constexpr real MARGIN_CELLS = 2;  // on each side
constexpr int TILE = 4;           // cells along the side of the smallest square

struct Edge {
    Vec2 a;
    Vec2 d;            // to its other end
    real perLengthSq;  // 1 / |d|^2; 0 for an edge without length
};

inline real DistanceSquared(const Edge& e, real x, real y) {
    const real px = x - e.a.x, py = y - e.a.y;
    const real t = std::min(std::max((px * e.d.x + py * e.d.y) * e.perLengthSq, 0.0f), 1.0f);
    const real rx = px - t * e.d.x, ry = py - t * e.d.y;
    return rx * rx + ry * ry;
}

// Square by square, each cut into four until it is a tile: with R half the diagonal of a square, the edge
// nearest to any of its cells is at most 2 R farther from the middle than the edge nearest to that. What few
// edges are left for a tile are measured at each of its cells.
class FieldBuilder {
  public:
    FieldBuilder(const RasterOutline& outline, util::VectorPOD<float>& cells) : m_cells(cells) {
        const Vec2 reach = DistanceField::GetReach(outline.halfSize);
        m_cell = Vec2(2 * reach.x / SIZE, 2 * reach.y / SIZE);
        m_low = Vec2(m_cell.x / 2 - reach.x, m_cell.y / 2 - reach.y);
        const size_t count = outline.steps.size();
        for (size_t i = 0; i < count; ++i) {
            const Vec2 a = outline.GetVertex(i), b = outline.GetVertex((i + 1) % count);
            const real lengthSq = math::LengthSquared(b - a);
            m_edges.push_back({a, b - a, lengthSq > 0 ? 1 / lengthSq : 0});
            m_ends.push_back(b);
        }
    }

    void Build() {
        MeasureSquare(0, 0, SIZE, 0);
        MarkCrossings();
        for (int j = 0; j < SIZE; ++j) Finish(j);
    }

  private:
    // Of the edges from `begin` on, which are those for the square around this one.
    void MeasureSquare(int left, int bottom, int side, size_t begin) {
        const size_t end = m_edges.size();
        FindNear(left, bottom, side, begin, end);
        if (side == TILE) {
            for (size_t e = end; e < m_edges.size(); ++e) MeasureTile(m_edges[e], left, bottom);
        } else {
            const int half = side / 2;
            MeasureSquare(left, bottom, half, end);
            MeasureSquare(left + half, bottom, half, end);
            MeasureSquare(left, bottom + half, half, end);
            MeasureSquare(left + half, bottom + half, half, end);
        }
        m_edges.resize(end);
    }

    // Puts those of the edges that matter to the square behind them.
    void FindNear(int left, int bottom, int side, size_t begin, size_t end) {
        constexpr real ROUNDING = 1.0001f;
        const real half = static_cast<real>(side - 1) * 0.5f;
        const real x = m_low.x + m_cell.x * (static_cast<real>(left) + half);
        const real y = m_low.y + m_cell.y * (static_cast<real>(bottom) + half);
        m_distances.resize(std::max(m_distances.size(), end - begin));
        real least = std::numeric_limits<real>::infinity();
        for (size_t e = begin; e < end; ++e) {
            m_distances[e - begin] = DistanceSquared(m_edges[e], x, y);
            least = std::min(least, m_distances[e - begin]);
        }
        const real limit = (std::sqrt(least) + 2 * half * math::Length(m_cell)) * ROUNDING;
        for (size_t e = begin; e < end; ++e) {
            if (m_distances[e - begin] <= limit * limit) m_edges.push_back(m_edges[e]);
        }
    }

    void MeasureTile(const Edge& edge, int left, int bottom) {
        for (int j = bottom; j < bottom + TILE; ++j) {
            const real y = m_low.y + m_cell.y * static_cast<real>(j);
            float* const row = m_cells.data() + j * SIZE + left;
            for (int i = 0; i < TILE; ++i) {
                const real x = m_low.x + m_cell.x * static_cast<real>(left + i);
                row[i] = std::min(row[i], DistanceSquared(edge, x, y));
            }
        }
    }

    // Along each row of centres, the cells before which the outline is crossed: inside is what lies behind an
    // odd number. A row goes through a vertex above it or below it, the same for both of its edges.
    void MarkCrossings() {
        m_crossings.resize(SIZE * (SIZE + 1), 0);
        for (size_t e = 0; e < m_ends.size(); ++e) {
            const Vec2 a = m_edges[e].a, b = m_ends[e];
            const real low = std::min(a.y, b.y), high = std::max(a.y, b.y);
            const int first = std::max(static_cast<int>((low - m_low.y) / m_cell.y) - 1, 0);
            const int last = std::min(static_cast<int>((high - m_low.y) / m_cell.y) + 1, SIZE - 1);
            for (int j = first; j <= last; ++j) {
                const real y = m_low.y + m_cell.y * static_cast<real>(j);
                if ((a.y > y) == (b.y > y)) continue;
                const real x = a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x);
                const real place = std::ceil((x - m_low.x) / m_cell.x);
                const int i = static_cast<int>(std::min(std::max(place, 0.0f), static_cast<real>(SIZE)));
                m_crossings[static_cast<size_t>(j * (SIZE + 1) + i)] ^= 1;
            }
        }
    }

    void Finish(int j) {
        uint8_t isInside = 0;
        for (int i = 0; i < SIZE; ++i) {
            isInside ^= m_crossings[static_cast<size_t>(j * (SIZE + 1) + i)];
            float& cell = m_cells[static_cast<size_t>(j * SIZE + i)];
            cell = isInside ? -std::sqrt(cell) : std::sqrt(cell);
        }
    }

    util::VectorPOD<float>& m_cells;
    Vec2 m_low;                         // centre of the first cell
    Vec2 m_cell;                        // m, its size
    util::VectorPOD<Edge> m_edges;      // of the outline, and those of the squares in hand
    util::VectorPOD<Vec2> m_ends;       // of the outline's edges
    util::VectorPOD<real> m_distances;  // m^2, of edges from the middle of a square
    util::VectorPOD<uint8_t> m_crossings;
};

// The same bits whoever asks first: the step, in its mode of numbers, drawing, or the second thread.
DistanceField::Cells MakeCells(const RasterOutline& outline) {
    const ScopedFlushToZero flushToZero;
    DistanceField::Cells cells(SIZE, SIZE, std::numeric_limits<real>::infinity());
    FieldBuilder(outline, cells.GetData()).Build();
    return cells;
}

// One part in STEPS of the number itself, so that sizes that differ by rounding are the same.
real RoundSize(real size) {
    int exponent;
    const real mantissa = std::frexp(size, &exponent);
    constexpr real STEPS = RasterOutline::STEPS;
    return std::ldexp(std::floor(mantissa * STEPS + 0.5f) / STEPS, exponent);
}

int16_t RoundStep(real place, real halfSize) {
    constexpr real STEPS = RasterOutline::STEPS;
    const real step = std::floor(place / halfSize * STEPS + 0.5f);
    return static_cast<int16_t>(std::max(-STEPS, std::min(step, STEPS)));  // so ordered for a NaN: 0 / 0
}

uint64_t CalcHash(const RasterOutline& outline) {
    constexpr uint64_t PRIME = 1099511628211u;  // FNV-1a
    uint64_t hash = 14695981039346656037u;
    for (const auto& step : outline.steps) {
        hash = (hash ^ static_cast<uint16_t>(step.x)) * PRIME;
        hash = (hash ^ static_cast<uint16_t>(step.y)) * PRIME;
    }
    return hash;
}

// The fields of all outlines there are. Held by none but those who use them.
using Fields = std::unordered_multimap<uint64_t, DistanceField*>;

Fields& GetFields() {
    static Fields& s_fields = *new Fields;  // abandoned at exit
    return s_fields;
}

}  // namespace

RasterOutline::RasterOutline(const math::Vec2List& vertices, Vec2 halfSize_)
    : halfSize(RoundSize(halfSize_.x), RoundSize(halfSize_.y)) {
    steps.reserve(vertices.size());
    for (const Vec2 v : vertices)
        steps.emplace_back(RoundStep(v.x, halfSize_.x), RoundStep(v.y, halfSize_.y));
}

Vec2 RasterOutline::GetVertex(size_t i) const {
    return {static_cast<real>(steps[i].x) / STEPS * halfSize.x,
            static_cast<real>(steps[i].y) / STEPS * halfSize.y};
}

util::SharedPtr<const DistanceField> DistanceField::Get(const RasterOutline& outline) {
    const auto range = GetFields().equal_range(CalcHash(outline));
    for (auto found = range.first; found != range.second; ++found) {
        if (found->second->GetOutline() == outline) return found->second;
    }
    return new DistanceField(outline);
}

Vec2 DistanceField::GetReach(Vec2 halfSize) {
    return {halfSize.x + MARGIN_CELLS * std::max(2 * halfSize.x / SIZE, MIN_CELL),
            halfSize.y + MARGIN_CELLS * std::max(2 * halfSize.y / SIZE, MIN_CELL)};
}

DistanceField::DistanceField(const RasterOutline& outline) : m_outline(outline) {
    GetFields().emplace(CalcHash(outline), this);
}

void DistanceField::Use() const {
    if (m_lastUse == 0) Build();
    m_lastUse = s_builds;
}

void DistanceField::Build() const {
    if (s_kept >= s_mostKept) DropOldest();
    m_cells = m_ahead ? m_ahead->Take() : MakeCells(m_outline);
    m_ahead.reset();
    ++s_kept;
    ++s_builds;
}

void DistanceField::BuildAhead() const {
    if (m_lastUse != 0 || m_ahead || s_kept >= s_mostKept) return;
    m_ahead = std::make_unique<util::Ahead<Cells>>([outline = m_outline] { return MakeCells(outline); });
}

void DistanceField::Drop() const {
    if (m_lastUse == 0) return;
    m_cells = Cells();
    m_lastUse = 0;
    --s_kept;
}

// A part of them at once, so that a build seldom has to look for more.
void DistanceField::DropOldest() {
    constexpr size_t SHARE = 8;
    std::vector<const DistanceField*> kept;
    for (const auto& [_, field] : GetFields()) {
        if (field->m_lastUse != 0) kept.push_back(field);
    }
    const auto isOlder = [](const DistanceField* a, const DistanceField* b) {
        return a->m_lastUse < b->m_lastUse;
    };
    const size_t surplus = kept.size() - s_mostKept;
    const auto end = kept.begin() + static_cast<ptrdiff_t>(std::max(s_mostKept / SHARE, surplus + 1));
    std::nth_element(kept.begin(), end - 1, kept.end(), isOlder);
    std::for_each(kept.begin(), end, [](const DistanceField* field) { field->Drop(); });
}

void DistanceField::SetMostKept(size_t fields) {
    s_mostKept = std::max<size_t>(fields, 1);
    if (s_kept > s_mostKept) DropOldest();
}

DistanceField::~DistanceField() noexcept(false) {
    Drop();
    const auto range = GetFields().equal_range(CalcHash(m_outline));
    for (auto found = range.first; found != range.second; ++found) {
        if (found->second != this) continue;
        GetFields().erase(found);
        return;
    }
}

}  // namespace physics
