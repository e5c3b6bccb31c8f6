#include "DistanceReference.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "math/Geometry.h"

namespace test {

using math::Vec2;
using physics::Line;

namespace {

constexpr int SIZE = physics::DistanceMap::SIZE;

struct Cell {
    int closest = -1;
    float distSq = std::numeric_limits<float>::infinity();
    bool done = false;
};

class Spreader {
  public:
    explicit Spreader(const physics::Polygon& polygon)
        : m_lines(polygon.GetLines()), m_polygon(polygon), m_cells(SIZE * SIZE) {}

    std::vector<float> Run() {
        for (int e = 0; e < static_cast<int>(m_lines.size()); ++e) Seed(e);
        while (!m_queue.empty()) {
            const int index = m_queue.begin()->second;
            m_queue.erase(m_queue.begin());
            if (m_cells[index].done) continue;
            m_cells[index].done = true;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    Offer(index % SIZE + dx, index / SIZE + dy, m_cells[index].closest);
                }
            }
        }
        std::vector<float> distances;
        for (int index = 0; index < SIZE * SIZE; ++index) distances.push_back(GetSigned(index));
        return distances;
    }

  private:
    Vec2 GetCenter(int x, int y) const {
        return m_polygon.GetMapToLocal()(Vec2(static_cast<float>(x), static_cast<float>(y)));
    }

    void Offer(int x, int y, int edge) {
        if (x < 0 || y < 0 || x >= SIZE || y >= SIZE || m_cells[y * SIZE + x].done) return;
        Cell& cell = m_cells[y * SIZE + x];
        const Vec2 p = GetCenter(x, y);
        const Vec2 q = math::ClosestPointOnSegment(m_lines[edge].start, m_lines[edge].end, p);
        const float distSq = math::LengthSquared(p - q);
        if (!(distSq < cell.distSq)) return;
        cell.closest = edge;
        cell.distSq = distSq;
        m_queue.insert({distSq, y * SIZE + x});
    }

    void Seed(int edge) {
        const Vec2 p0 = m_polygon.GetLocalToMap()(m_lines[edge].start);
        const Vec2 p1 = m_polygon.GetLocalToMap()(m_lines[edge].end);
        int x = static_cast<int>(std::floor(p0.x + 0.5f)), y = static_cast<int>(std::floor(p0.y + 0.5f));
        const int x1 = static_cast<int>(std::floor(p1.x + 0.5f)),
                  y1 = static_cast<int>(std::floor(p1.y + 0.5f));
        const int stepX = x1 < x ? -1 : 1, stepY = y1 < y ? -1 : 1;
        const int dx = std::abs(x1 - x), dy = std::abs(y1 - y);
        int error = 0;
        for (int i = 0; i <= std::max(dx, dy); ++i) {
            Offer(x, y, edge);
            error += std::min(dx, dy);
            const bool turn = 2 * error >= std::max(dx, dy);
            if (turn) error -= std::max(dx, dy);
            if (dx >= dy || turn) x += stepX;
            if (dy > dx || turn) y += stepY;
        }
    }

    Vec2 GetVertexNormal(int vertex) const {
        const int n = static_cast<int>(m_lines.size());
        const Line before = m_lines[(vertex + n - 1) % n], after = m_lines[vertex % n];
        const Vec2 s =
            math::Normalized(before.end - before.start) + math::Normalized(after.end - after.start);
        return math::Normalized(Vec2(s.y, -s.x));
    }

    float GetSigned(int index) const {
        const int edge = m_cells[index].closest;
        const Vec2 p = GetCenter(index % SIZE, index / SIZE);
        const Vec2 a = m_lines[edge].start, b = m_lines[edge].end;
        const Vec2 q = math::ClosestPointOnSegment(a, b, p);
        bool inside = (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y) > 0;
        if (q == a) {
            inside = math::Dot(p - q, GetVertexNormal(edge)) < 0;
        } else if (q == b) {
            inside = math::Dot(p - q, GetVertexNormal(edge + 1)) < 0;
        }
        return inside ? -math::Length(p - q) : math::Length(p - q);
    }

    const physics::LineList& m_lines;
    const physics::Polygon& m_polygon;
    std::vector<Cell> m_cells;
    std::set<std::pair<float, int>> m_queue;
};

}  // namespace

double TrueDistance(const physics::Polygon& polygon, Vec2 p) {
    double least = std::numeric_limits<double>::infinity();
    bool inside = false;
    for (const Line& line : polygon.GetLines()) {
        const double ax = line.start.x, ay = line.start.y, bx = line.end.x, by = line.end.y;
        const double dx = bx - ax, dy = by - ay;
        const double t = std::clamp(((p.x - ax) * dx + (p.y - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        least = std::min(least, std::hypot(p.x - ax - t * dx, p.y - ay - t * dy));
        if ((ay > p.y) != (by > p.y) && p.x < ax + (p.y - ay) / dy * dx) inside = !inside;
    }
    return inside ? -least : least;
}

std::vector<float> SpreadBySet(const physics::Polygon& polygon) {
    return Spreader(polygon).Run();
}

}  // namespace test
