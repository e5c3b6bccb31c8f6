#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Float8.h"
#include "physics/SidePoints.h"
#include "util/Assert.h"
#include "util/Exception.h"

namespace physics {

using math::OBB2D;
using math::real;
using math::RigidTransform;
using math::Vec2;
using math::Vec2List;
using math::Vec3;

namespace {

// Construction takes time with the square of this; an outline drawn by hand has some hundreds.
constexpr size_t MAX_VERTICES = 20000;

Vec2List DropRepeated(const Vec2List& outline) {
    Vec2List vertices;
    vertices.reserve(outline.size());
    for (const Vec2 v : outline) {
        if (vertices.empty() || v != vertices.back()) vertices.push_back(v);
    }
    while (vertices.size() > 1 && vertices.back() == vertices.front()) vertices.pop_back();
    return vertices;
}

// About the middle of the two vertices that lie farthest apart: near the smallest circle, and no more.
Vec3 CalcBoundingCircle(const Vec2List& vertices) {
    if (vertices.empty()) return {0, 0, -1};
    Vec2 middle = vertices[0];
    real greatest = 0;
    for (size_t i = 0; i < vertices.size(); ++i) {
        for (size_t j = i + 1; j < vertices.size(); ++j) {
            const real distSq = math::LengthSquared(vertices[j] - vertices[i]);
            if (!(distSq > greatest)) continue;
            greatest = distSq;
            middle = (vertices[i] + vertices[j]) / 2;
        }
    }
    real radius = 0;
    for (const Vec2 v : vertices) radius = std::max(radius, math::Length(v - middle));
    return {middle.x, middle.y, radius};
}

Vec2 ToBox(const OBB2D& box, Vec2 p) {
    const Vec2 r = p - box.center;
    return {math::Dot(box.axis[0], r), math::Dot(box.axis[1], r)};
}

bool Contains(const OBB2D& box, Vec2 p) {
    const Vec2 q = ToBox(box, p);
    return std::fabs(q.x) <= box.halfSize.x && std::fabs(q.y) <= box.halfSize.y;
}

// From the nearest point of a box to a point outside it.
Vec2 GetWayOut(const OBB2D& box, Vec2 p) {
    const Vec2 q = ToBox(box, p);
    const real x = q.x - std::clamp(q.x, -box.halfSize.x, box.halfSize.x);
    const real y = q.y - std::clamp(q.y, -box.halfSize.y, box.halfSize.y);
    return x * box.axis[0] + y * box.axis[1];
}

[[noreturn]] void ThrowTooManyVertices() {
    THROW(BadDataException, "Too many vertices");
}

}  // namespace

Polygon::Polygon(const Vec2List& outline, const Surface& surface)
    : Geom(Kind::POLYGON, surface), m_vertices(DropRepeated(outline)) {
    if (m_vertices.size() < 3) THROW(BadDataException, "Bad polygon");
    if (m_vertices.size() > MAX_VERTICES) ThrowTooManyVertices();
    const Vec2 centroid = CalcAttribs();
    const bool sound = m_area > 0 && std::isfinite(m_area) && m_inertiaSansMass > 0;
    if (!std::isfinite(centroid.x) || !std::isfinite(centroid.y)) THROW(BadDataException, "Bad polygon");
    BuildLines();
    CheckSelfIntersection();
    // Asked last, since the loops of a figure of eight may cancel out and it deserves its own message.
    if (!sound || !std::isfinite(m_inertiaSansMass)) THROW(BadDataException, "Bad polygon");
    m_obb = OBB2D::BuildBest(m_vertices.data(), m_vertices.size());
    m_boundingCircle = CalcBoundingCircle(m_vertices);
    m_sidePoints = FindSidePoints(m_vertices);
    m_map = new DistanceMap(m_vertices, m_obb);
    SetTransform(RigidTransform(1, 0, centroid.x, centroid.y));
}

Polygon::Polygon(const Polygon& other) = default;

Polygon::~Polygon() noexcept(false) = default;

// With cross_i = x_i y_(i+1) - x_(i+1) y_i over the closed outline:
//   A = sum cross_i / 2
//   C = sum (v_i + v_(i+1)) cross_i / (6 A)
//   I/m = sum cross_i (v_i.v_i + v_i.v_(i+1) + v_(i+1).v_(i+1)) / (12 A), about the centroid
// The sums for A and C run in double and relative to the first vertex: far from the world's origin the
// products of float coordinates would leave no digits for the shape itself.
namespace {

using Vec2d = math::TVector2<double>;

Vec2d ToDouble(Vec2 v) {
    return {double(v.x), double(v.y)};
}

struct AreaSum {
    double area = 0;  // above 0 for a counter-clockwise outline
    Vec2d centroid;   // the first vertex where there is no area
};

AreaSum SumArea(const Vec2List& vertices) {
    const Vec2d first = ToDouble(vertices[0]);
    AreaSum sum;
    Vec2d moment;
    for (size_t i = 0; i < vertices.size(); ++i) {
        const Vec2d a = ToDouble(vertices[i]) - first;
        const Vec2d b = ToDouble(vertices[(i + 1) % vertices.size()]) - first;
        sum.area += math::Cross(a, b) / 2;
        moment += (a + b) * math::Cross(a, b);
    }
    sum.centroid = sum.area != 0 ? first + moment / (6 * sum.area) : first;
    return sum;
}

double SumInertia(const Vec2List& vertices) {
    double inertia = 0;
    for (size_t i = 0; i < vertices.size(); ++i) {
        const Vec2d a = ToDouble(vertices[i]), b = ToDouble(vertices[(i + 1) % vertices.size()]);
        inertia += math::Cross(a, b) * (math::Dot(a, a) + math::Dot(a, b) + math::Dot(b, b));
    }
    return inertia;
}

// Whether the outline has its centroid at the origin but for rounding.
bool IsCentered(const Vec2List& vertices, const Vec2d& centroid) {
    constexpr double TOLERANCE = 1e-6;  // of the extent
    math::BoundingBox2f box;
    for (const Vec2 v : vertices) box.Extend(v);
    const Vec2 extent = box.GetSize();
    return std::sqrt(math::LengthSquared(centroid)) <= TOLERANCE * std::max(extent.x, extent.y);
}

}  // namespace

// Makes the vertices counter-clockwise and relative to the centroid, which it returns. An outline that is
// centred stays as it is: a shape that goes through a file keeps its bits. For the same reason area and
// inertia are those of the vertices as they are kept.
Vec2 Polygon::CalcAttribs() {
    const AreaSum given = SumArea(m_vertices);
    Vec2 centroid;
    if (!IsCentered(m_vertices, given.centroid)) {
        centroid = Vec2(static_cast<real>(given.centroid.x), static_cast<real>(given.centroid.y));
        for (Vec2& v : m_vertices) {
            const Vec2d local = ToDouble(v) - given.centroid;
            v = Vec2(static_cast<real>(local.x), static_cast<real>(local.y));
        }
    }
    if (given.area < 0) std::reverse(m_vertices.begin(), m_vertices.end());
    const double area = SumArea(m_vertices).area;
    m_area = static_cast<real>(area);
    m_inertiaSansMass = area > 0 ? static_cast<real>(SumInertia(m_vertices) / (12 * area)) : 0;
    DATA_CHECK(m_inertiaSansMass > 0);
    return centroid;
}

void Polygon::BuildLines() {
    const size_t n = m_vertices.size();
    m_lines.reserve(n);
    for (size_t i = 0; i < n; ++i) m_lines.push_back({m_vertices[i], m_vertices[(i + 1) % n]});
    CODE_ASSERTION(m_lines.size() == m_vertices.size());
}

// All pairs of edges. Edges whose boxes are apart are not asked: they cannot cross, and the answer for
// nearly collinear ones, such as those of a slanted side with points put in, would be rounding noise.
void Polygon::CheckSelfIntersection() const {
    util::VectorPOD<math::BoundingBox2f> boxes;
    boxes.reserve(m_lines.size());
    for (const Line& line : m_lines) {
        math::BoundingBox2f box;
        box.Extend(line.start);
        box.Extend(line.end);
        boxes.push_back(box);
    }
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const Line a = m_lines[i];
        const math::BoundingBox2f box = boxes[i];
        for (size_t j = i + 1; j < m_lines.size(); ++j) {
            if (!box.Overlaps(boxes[j])) continue;
            if (!math::SegmentsIntersect(a.start, a.end, m_lines[j].start, m_lines[j].end)) continue;
            THROW(BadDataException, "Self-intersecting polygon");
        }
    }
}

void Polygon::SetTransform(const RigidTransform& transform) {
    Geom::SetTransform(transform);
    m_worldOBB.center = transform(m_obb.center);
    m_worldOBB.axis[0] = transform.Rotate(m_obb.axis[0]);
    m_worldOBB.axis[1] = transform.Rotate(m_obb.axis[1]);
    m_worldOBB.halfSize = m_obb.halfSize;
    const Vec2 center = transform(Vec2(m_boundingCircle.x, m_boundingCircle.y));
    m_worldBoundingCircle = {center.x, center.y, m_boundingCircle.z};

    const RigidTransform t = transform;
    const size_t n = m_vertices.size();
    m_worldVertices.resize(n);
    const Vec2* const local = m_vertices.data();
    Vec2* const world = m_worldVertices.data();
    for (size_t i = 0; i < n; ++i) world[i] = t(local[i]);
    m_worldLines.clear();
    m_worldSidePoints.clear();
}

math::BoundingBox2f Polygon::GetBoundingBox() const {
    math::BoundingBox2f box;
    for (const Vec2 v : m_worldVertices) box.Extend(v);
    return box;
}

const LineList& Polygon::GetWorldLines() const {
    if (!m_worldLines.empty()) return m_worldLines;
    const size_t n = m_worldVertices.size();
    m_worldLines.reserve(n);
    for (size_t i = 0; i < n; ++i) m_worldLines.push_back({m_worldVertices[i], m_worldVertices[(i + 1) % n]});
    return m_worldLines;
}

const Vec2List& Polygon::GetWorldSidePoints() const {
    if (!m_worldSidePoints.empty()) return m_worldSidePoints;
    m_worldSidePoints.reserve(m_sidePoints.size());
    for (const Vec2 p : m_sidePoints) m_worldSidePoints.push_back(GetTransform()(p));
    return m_worldSidePoints;
}

Vec2 Polygon::GetNormal(Vec2 point) const {
    const Vec2 p = GetInvTransform()(point);
    const Vec2 r = p - m_obb.center;
    if (std::fabs(math::Dot(m_obb.axis[0], r)) > m_obb.halfSize.x) return Vec2();
    if (std::fabs(math::Dot(m_obb.axis[1], r)) > m_obb.halfSize.y) return Vec2();
    return GetTransform().Rotate(math::Normalized(m_map->SampleGradient(p)));
}

real Polygon::GetFieldDistance(Vec2 point) const {
    const Vec2 p = GetInvTransform()(point);
    if (Contains(m_map->GetBox(), p)) return m_map->SampleDistance(p);
    return math::Length(GetWayOut(m_obb, p));
}

Vec2 Polygon::GetFieldNormal(Vec2 point) const {
    const Vec2 p = GetInvTransform()(point);
    const bool isMapped = Contains(m_map->GetBox(), p);
    return GetTransform().Rotate(math::Normalized(isMapped ? m_map->SampleGradient(p) : GetWayOut(m_obb, p)));
}

bool Polygon::FindInside(Vec2 point, real& distance, Vec2& normal) const {
    Vec2 gradient;
    if (!m_map->SampleInside(GetInvTransform()(point), distance, gradient)) return false;
    normal = GetTransform().Rotate(math::Normalized(gradient));
    return true;
}

// The arithmetic of Distance up to the map, operation by operation.
uint32_t Polygon::FindInBox(const Vec2* points) const {
    using narrow::Float8;
    const auto fill = [](real x) { return Float8::Fill(x); };
    const RigidTransform& toLocal = GetInvTransform();
    Float8 px, py;
    Float8::LoadPairs(points, px, py);
    const Float8 c = fill(toLocal.cos), s = fill(toLocal.sin);
    const Float8 rx = c * px - s * py + fill(toLocal.x) - fill(m_obb.center.x);
    const Float8 ry = s * px + c * py + fill(toLocal.y) - fill(m_obb.center.y);
    uint32_t outside = 0;
    const real halfSizes[] = {m_obb.halfSize.x, m_obb.halfSize.y};
    for (int i = 0; i < 2; ++i) {
        const Float8 along = fill(m_obb.axis[i].x) * rx + fill(m_obb.axis[i].y) * ry;
        outside |= MaskLess(fill(halfSizes[i]), Max(along, -along));
    }
    return ~outside & ((1u << BLOCK) - 1);
}

bool Polygon::Encloses(const Polygon& other) const {
    if (!BoundsOverlap(*this, other)) return false;
    for (const Vec2 v : other.m_worldVertices) {
        if (!(Distance(v) < 0)) return false;
    }
    for (const Vec2 v : m_worldVertices) {
        if (other.Distance(v) < 0) return false;
    }
    return true;
}

size_t Polygon::CountIntersections(const LineList& lines) const {
    size_t count = 0;
    for (const Line& line : lines) {
        for (const Line& edge : GetWorldLines()) {
            if (math::SegmentsIntersect(line.start, line.end, edge.start, edge.end)) ++count;
        }
    }
    return count;
}

// ---- free functions ------------------------------------------------------------------------------------

real GetReach(const OBB2D& box, Vec2 direction) {
    return box.halfSize.x * std::fabs(math::Dot(box.axis[0], direction)) +
           box.halfSize.y * std::fabs(math::Dot(box.axis[1], direction));
}

bool BoxesOverlap(const OBB2D& a, const OBB2D& b) {
    const Vec2 d = b.center - a.center;
    for (const Vec2 axis : {a.axis[0], a.axis[1], b.axis[0], b.axis[1]}) {
        if (!(std::fabs(math::Dot(d, axis)) <= GetReach(a, axis) + GetReach(b, axis))) return false;
    }
    return true;
}

bool BoundsOverlap(const Polygon& a, const Polygon& b) {
    const Vec3 circleA = a.GetWorldBoundingCircle(), circleB = b.GetWorldBoundingCircle();
    const Vec2 centerA(circleA.x, circleA.y), centerB(circleB.x, circleB.y);
    const real reach = circleA.z + circleB.z;
    if (!(math::LengthSquared(centerB - centerA) < reach * reach)) return false;
    if (!BoxesOverlap(a.GetWorldOBB(), b.GetWorldOBB())) return false;
    return a.Distance(centerB) <= circleB.z && b.Distance(centerA) <= circleA.z;
}

Vec2List AssertMaxDist(const Vec2List& outline, real maxDist) {
    DATA_ASSERTION(maxDist > 0);
    Vec2List ret;
    if (outline.empty()) return ret;
    ret.push_back(outline[0]);
    for (size_t i = 0; i < outline.size(); ++i) {
        const Vec2 a = outline[i], b = outline[(i + 1) % outline.size()];
        const real length = math::Length(b - a);
        if (length == 0) continue;
        DATA_ASSERTION(std::isfinite(length));
        const real pieces = std::ceil(length / maxDist);
        if (!(pieces <= static_cast<real>(MAX_VERTICES - ret.size()))) ThrowTooManyVertices();
        for (real k = 1; k < pieces; ++k) ret.push_back(a * (1 - k / pieces) + b * (k / pieces));
        ret.push_back(b);
    }
    DATA_ASSERTION(ret.front() == ret.back());
    ret.pop_back();
    return ret;
}

PolygonPtr MakeBoxPolygon(real minX, real minY, real maxX, real maxY) {
    const Vec2 corners[] = {{minX, minY}, {maxX, minY}, {maxX, maxY}, {minX, maxY}};
    Vec2List outline;
    for (int side = 0; side < 4; ++side) {
        const Vec2 a = corners[side], b = corners[(side + 1) % 4];
        for (const real f : {0.0f, 0.03125f, 0.5f, 0.96875f}) outline.push_back(a * (1 - f) + b * f);
    }
    return new Polygon(outline);
}

}  // namespace physics
