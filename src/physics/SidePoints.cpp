#include "physics/SidePoints.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "math/BoundingBox.h"
#include "math/Geometry.h"

namespace physics {

using math::real;
using math::Vec2;
using math::Vec2List;

using SidePoints = util::VectorPOD<SidePoint>;

namespace {

constexpr real STRAIGHT = 0.01f;         // rad, of turn at a vertex within a side
constexpr real SHARP_COSINE = 0.5736f;   // of the turn at a corner: 55 degrees, as of a pentagon
constexpr real LEAST_LENGTH = 1 / 16.f;  // of the outline's extent; what is shorter has neighbours nearby
// Near a corner is as near as the vertices of a box, see MakeBoxPolygon; but no nearer than shapes at rest
// sink into each other, several times over: there the way out would lead round the corner.
constexpr real NEAR = 1 / 32.f;       // of the side
constexpr real LEAST_NEAR = 0.003f;   // m
constexpr real MOST_NEAR = 1 / 4.f;   // of the side
constexpr real STILL_NEAR = 1 / 8.f;  // of the side
constexpr real ALMOST = 0.9f;         // of what is asked for is enough
constexpr real WIDEST_GAP = 0.55f;    // of the side, without any point

// A straight stretch of an outline: its vertices from corner to corner.
class Side {
  public:
    Side(const Vec2List& vertices, size_t first, size_t last) : m_first(first), m_count(vertices.size()) {
        const size_t n = vertices.size();
        for (size_t i = first; i <= last; ++i) {
            const Vec2 v = vertices[i % n];
            m_places.push_back(i == first ? 0 : m_places.back() + math::Length(v - m_vertices.back()));
            m_vertices.push_back(v);
        }
    }

    real GetLength() const { return m_places.back(); }

    void FindPoints(bool isSharpAtStart, bool isSharpAtEnd, SidePoints& points) const {
        const real near = std::min(std::max(NEAR * GetLength(), LEAST_NEAR), MOST_NEAR * GetLength());
        std::vector<real> wanted;
        if (isSharpAtStart && !HasVertexNear(0, near)) wanted.push_back(near);
        if (isSharpAtEnd && !HasVertexNear(GetLength(), near)) wanted.push_back(GetLength() - near);
        const real middle = FindMiddleOfGap(wanted);
        if (middle > 0) wanted.push_back(middle);
        std::sort(wanted.begin(), wanted.end());
        for (const real place : wanted) points.push_back(GetPoint(place));
    }

  private:
    bool HasVertexNear(real end, real near) const {
        const real most = std::max(STILL_NEAR * GetLength(), near / ALMOST);
        return std::any_of(m_places.begin(), m_places.end(), [&](real place) {
            const real away = std::fabs(place - end);
            return away >= ALMOST * near && away <= most;
        });
    }

    // 0 where no gap is too wide. There is room for one.
    real FindMiddleOfGap(const std::vector<real>& wanted) const {
        std::vector<real> places = m_places;
        places.insert(places.end(), wanted.begin(), wanted.end());
        std::sort(places.begin(), places.end());
        for (size_t i = 1; i < places.size(); ++i) {
            if (places[i] - places[i - 1] > WIDEST_GAP * GetLength()) return (places[i] + places[i - 1]) / 2;
        }
        return 0;
    }

    SidePoint GetPoint(real place) const {
        const auto next = std::upper_bound(m_places.begin(), m_places.end() - 1, place);
        const auto i = static_cast<size_t>(next - m_places.begin());
        const real share = (place - m_places[i - 1]) / (m_places[i] - m_places[i - 1]);
        const size_t edge = (m_first + i - 1) % m_count;
        return {m_vertices[i - 1] * (1 - share) + m_vertices[i] * share, static_cast<uint32_t>(edge)};
    }

    size_t m_first, m_count;  // of the outline's vertices
    Vec2List m_vertices;
    std::vector<real> m_places;  // m, of the vertices, along the side
};

real GetExtent(const Vec2List& vertices) {
    math::BoundingBox2f box;
    for (const Vec2 v : vertices) box.Extend(v);
    return math::Length(box.GetSize());
}

// The sides of an outline, and how it turns between them.
class Outline {
  public:
    explicit Outline(const Vec2List& vertices) : m_vertices(vertices) {
        const size_t n = vertices.size();
        for (size_t i = 0; i < n; ++i) {
            const Vec2 in = math::Normalized(vertices[i] - vertices[(i + n - 1) % n]);
            const Vec2 out = math::Normalized(vertices[(i + 1) % n] - vertices[i]);
            const real sine = math::Cross(in, out), cosine = math::Dot(in, out);
            if (std::fabs(sine) > STRAIGHT || cosine < 0)
                m_corners.push_back({i, sine > 0 && cosine < SHARP_COSINE});
        }
    }

    SidePoints FindPoints() const {
        SidePoints points;
        const real least = LEAST_LENGTH * GetExtent(m_vertices);
        for (size_t k = 0; k < m_corners.size(); ++k) {
            const bool wraps = k + 1 == m_corners.size();
            const Corner &start = m_corners[k], &end = m_corners[wraps ? 0 : k + 1];
            const Side side(m_vertices, start.vertex, end.vertex + (wraps ? m_vertices.size() : 0));
            if (side.GetLength() >= least) side.FindPoints(start.isSharp, end.isSharp, points);
        }
        return points;
    }

  private:
    struct Corner {
        size_t vertex;
        bool isSharp;
    };

    const Vec2List& m_vertices;
    std::vector<Corner> m_corners;
};

}  // namespace

SidePoints FindSidePoints(const Vec2List& vertices) {
    return Outline(vertices).FindPoints();
}

}  // namespace physics
