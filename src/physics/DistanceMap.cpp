#include "physics/DistanceMap.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "math/Geometry.h"
#include "math/Matrix2.h"
#include "physics/DistanceQueue.h"
#include "util/Assert.h"
#include "util/Exception.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr int SIZE = DistanceMap::SIZE;
constexpr real MIN_CELL = 0.1f;   // m, of the two cells of margin
constexpr real MARGIN_CELLS = 2;  // on each side
constexpr real HALF_CELL = 0.5f;

// An edge, with what every distance to it needs.
struct Edge {
    Vec2 a, b;
    Vec2 d;         // b - a
    real lengthSq;  // |d|^2
    Vec2 normalA;   // outward at either end, halfway between the two edges that meet there
    Vec2 normalB;
    real arcA;  // m along the outline
    real arcB;
};

// t = (p - a).(b - a) / |b - a|^2 names the foot of p on the edge's line. As ClosestPointOnSegment, with
// the edge's share worked out beforehand.
inline Vec2 ClosestPoint(const Edge& e, Vec2 p, real& t) {
    t = math::Dot(p - e.a, e.d) / e.lengthSq;
    if (t > 0 && t < 1) return e.a + t * e.d;
    if (!IsFinite(t) || t != t) return p;
    const bool before = t <= 0;
    t = before ? 0.0f : 1.0f;
    return before ? e.a : e.b;
}

inline real DistanceSquared(const Edge& e, Vec2 p) {
    real t;
    return math::LengthSquared(p - ClosestPoint(e, p, t));
}

// What is known of a cell in the end.
struct BuildCell {
    Vec2 center;          // local
    const Edge* closest;  // null for a cell that no edge reached
};

// Finds the closest edge of each cell: cells that an edge crosses are measured against it, then each cell,
// nearest first, offers its edge to its neighbours. A cell that has made its offers is done and takes none.
//
// The arrays have a border of cells that are done from the start, so that every cell has eight neighbours.
class EdgeField {
  public:
    EdgeField(const util::VectorPOD<Edge>& edges, const math::OBB2D& box,
              const math::TMatrix3<float>& localToMap, const math::TMatrix3<float>& mapToLocal)
        : m_edges(edges), m_localToMap(localToMap), m_queue(math::Length(box.halfSize), STRIDE * STRIDE) {
        CODE_ASSERTION(edges.size() < DONE);
        m_open.resize(STRIDE * STRIDE, DONE);
        m_closest.resize(STRIDE * STRIDE, NONE);
        m_distSq.resize(STRIDE * STRIDE, std::numeric_limits<real>::infinity());
        m_center.resize(STRIDE * STRIDE);
        for (int j = 0; j < SIZE; ++j) {
            for (int i = 0; i < SIZE; ++i) {
                m_open[Index(i, j)] = NONE;
                m_center[Index(i, j)] = mapToLocal(Vec2(static_cast<real>(i), static_cast<real>(j)));
            }
        }
        for (size_t e = 0; e < edges.size(); ++e) SeedEdge(static_cast<uint16_t>(e));
        Propagate();
    }

    BuildCell operator()(int i, int j) const {
        const uint16_t closest = m_closest[Index(i, j)];
        return {m_center[Index(i, j)], closest == NONE ? nullptr : &m_edges[closest]};
    }

  private:
    static constexpr int STRIDE = SIZE + 2;
    static constexpr uint16_t NONE = 0xFFFF;  // no edge yet
    static constexpr uint16_t DONE = 0xFFFE;

    static uint32_t Index(int i, int j) { return static_cast<uint32_t>((j + 1) * STRIDE + i + 1); }

    void Offer(uint16_t e, uint32_t cell) {
        const real distSq = DistanceSquared(m_edges[e], m_center[cell]);
        if (!(distSq < m_distSq[cell])) return;
        m_open[cell] = m_closest[cell] = e;
        m_distSq[cell] = distSq;
        m_queue.Push(distSq, cell);
    }

    // Bresenham's walk along the longer axis, over the cells nearest to the edge.
    void SeedEdge(uint16_t e) {
        const Vec2 p0 = m_localToMap(m_edges[e].a);
        const Vec2 p1 = m_localToMap(m_edges[e].b);
        DATA_ASSERTION(p0 != p1);
        int cell[2] = {RoundToCell(p0.x), RoundToCell(p0.y)};
        const int delta[2] = {RoundToCell(p1.x) - cell[0], RoundToCell(p1.y) - cell[1]};
        const int major = std::abs(delta[1]) > std::abs(delta[0]) ? 1 : 0;
        const int length = std::abs(delta[major]);
        int error = 0;
        for (int step = 0; step <= length; ++step) {
            SeedCell(e, static_cast<uint32_t>(cell[0]), static_cast<uint32_t>(cell[1]));
            cell[major] += delta[major] < 0 ? -1 : 1;
            error += std::abs(delta[1 - major]);
            if (2 * error < length) continue;
            cell[1 - major] += delta[1 - major] < 0 ? -1 : 1;
            error -= length;
        }
    }

    static int RoundToCell(real x) { return static_cast<int>(std::floor(x + HALF_CELL)); }

    void SeedCell(uint16_t e, uint32_t x, uint32_t y) {
        constexpr uint32_t m_width = SIZE, m_height = SIZE;
        CODE_ASSERTION(x < m_width && y < m_height);  // the margin sees to that
        Offer(e, Index(static_cast<int>(x), static_cast<int>(y)));
    }

    void Propagate() {
        uint32_t cell;
        while (m_queue.Pop(cell)) {
            if (m_open[cell] == DONE) continue;
            m_open[cell] = DONE;
            OfferToNeighbours(m_closest[cell], cell);
        }
    }

    // Passes over neighbours that are done, and those that have this very edge already and would only
    // measure the same distance again. They are gathered without branches, which could not be foreseen.
    void OfferToNeighbours(uint16_t e, uint32_t cell) {
        constexpr int OFFSETS[] = {-STRIDE - 1, -STRIDE, -STRIDE + 1, -1, 1, STRIDE - 1, STRIDE, STRIDE + 1};
        uint32_t takers[std::size(OFFSETS)];
        int count = 0;
        for (const int offset : OFFSETS) {
            const uint32_t neighbour = cell + static_cast<uint32_t>(offset);
            takers[count] = neighbour;
            count += (m_open[neighbour] != e) & (m_open[neighbour] != DONE);
        }
        for (int k = 0; k < count; ++k) Offer(e, takers[k]);
    }

    const util::VectorPOD<Edge>& m_edges;
    const math::TMatrix3<float>& m_localToMap;
    util::VectorPOD<uint16_t> m_open;     // number of the edge a cell has, NONE, or DONE
    util::VectorPOD<uint16_t> m_closest;  // number of the edge a cell has, or NONE
    util::VectorPOD<real> m_distSq;       // m^2, to that edge
    util::VectorPOD<Vec2> m_center;       // local
    DistanceQueue m_queue;
};

// With p and q the directions of the edges that meet at `vertex`, the outward bisector of a
// counter-clockwise outline is p + q, a quarter turn to the right.
Vec2 VertexNormal(Vec2 previous, Vec2 vertex, Vec2 next) {
    const Vec2 s = math::Normalized(vertex - previous) + math::Normalized(next - vertex);
    return math::Normalized(Vec2(s.y, -s.x));
}

util::VectorPOD<Edge> PrepareEdges(const LineList& lines) {
    util::VectorPOD<Edge> edges;
    edges.reserve(lines.size());
    real arc = 0;
    for (const Line& line : lines) {
        const Vec2 d = line.end - line.start;
        const real arcEnd = arc + math::Length(d);
        edges.push_back({line.start, line.end, d, math::LengthSquared(d), Vec2(), Vec2(), arc, arcEnd});
        arc = arcEnd;
    }
    for (size_t i = 0; i < edges.size(); ++i) {
        Edge& edge = edges[i];
        Edge& next = edges[(i + 1) % edges.size()];
        edge.normalB = VertexNormal(edge.a, edge.b, next.b);
        next.normalA = edge.normalB;
    }
    return edges;
}

// The side of the edge tells inside from outside; at its ends the bisector does, since there the side of
// one edge alone would be wrong near sharp corners.
bool IsInside(const Edge& e, Vec2 p, Vec2 q) {
    if (q == e.a) return math::Dot(p - q, e.normalA) < 0;
    if (q == e.b) return math::Dot(p - q, e.normalB) < 0;
    return (p.y - e.a.y) * (e.b.x - e.a.x) - (p.x - e.a.x) * (e.b.y - e.a.y) > 0;
}

}  // namespace

DistanceMap::~DistanceMap() noexcept(false) = default;

DistanceMap::DistanceMap(const LineList& lines, const math::OBB2D& box)
    : m_distMap(SIZE, SIZE), m_perimeterMap(SIZE, SIZE), m_gradientMap(SIZE, SIZE) {
    MakeTransforms(box);
    const util::VectorPOD<Edge> edges = PrepareEdges(lines);
    m_perimeter = edges.back().arcB;
    const EdgeField field(edges, m_box, m_localToMap, m_mapToLocal);
    for (int j = 0; j < SIZE; ++j) {
        for (int i = 0; i < SIZE; ++i) {
            const BuildCell cell = field(i, j);
            DATA_ASSERTION(cell.closest);
            const Edge& e = *cell.closest;
            real t;
            const Vec2 q = ClosestPoint(e, cell.center, t);
            const real distance = math::Length(cell.center - q);
            const size_t index = static_cast<size_t>(j * SIZE + i);
            m_distMap.GetData()[index] = IsInside(e, cell.center, q) ? -distance : distance;
            m_perimeterMap.GetData()[index] = (1 - t) * e.arcA + t * e.arcB;
        }
    }
    // The corner lies in the margin, so outside; a wrong orientation or sign shows here.
    if (!(m_distMap(0, 0) > 0)) THROW(Exception, "Bad distance map generated");
    CalcGradient();
}

// A local point p has the map coordinates ((a . (p - c) + H) * SIZE / (2 H) - 0.5), for each axis a and half
// size H of the map's box with centre c.
void DistanceMap::MakeTransforms(const math::OBB2D& box) {
    m_box = box;
    m_box.halfSize.x += MARGIN_CELLS * std::max(2 * box.halfSize.x / SIZE, MIN_CELL);
    m_box.halfSize.y += MARGIN_CELLS * std::max(2 * box.halfSize.y / SIZE, MIN_CELL);
    const real halfSize[2] = {m_box.halfSize.x, m_box.halfSize.y};
    for (int r = 0; r < 2; ++r) {
        const Vec2 axis = m_box.axis[r];
        const real scale = SIZE / (2 * halfSize[r]);
        m_localToMap.m[r][0] = axis.x * scale;
        m_localToMap.m[r][1] = axis.y * scale;
        m_localToMap.m[r][2] = (halfSize[r] - math::Dot(axis, m_box.center)) * scale - HALF_CELL;
    }
    m_mapToLocal = math::Inverted(m_localToMap);
}

// Central differences, in map coordinates; at the borders one-sided ones, doubled to the same scale. With
// J the linear part of map to local, a gradient turns from map to local by the transpose of J's inverse.
void DistanceMap::CalcGradient() {
    math::TMatrix2<float> jacobian;
    for (int r = 0; r < 2; ++r) {
        for (int c = 0; c < 2; ++c) jacobian.m[r][c] = m_mapToLocal.m[r][c];
    }
    const math::TMatrix2<float> toLocal = math::Transposed(math::Inverted(jacobian));
    const float* const dist = m_distMap.GetData().data();
    const auto difference = [dist](int at, int stride, int place) {
        if (place == 0) return 2 * (dist[at + stride] - dist[at]);
        if (place == SIZE - 1) return 2 * (dist[at] - dist[at - stride]);
        return dist[at + stride] - dist[at - stride];
    };
    for (int j = 0; j < SIZE; ++j) {
        for (int i = 0; i < SIZE; ++i) {
            const int at = j * SIZE + i;
            const Vec2 gradient(difference(at, 1, i), difference(at, SIZE, j));
            m_gradientMap.GetData()[static_cast<size_t>(at)] = math::Normalized(toLocal * gradient);
        }
    }
}

}  // namespace physics
