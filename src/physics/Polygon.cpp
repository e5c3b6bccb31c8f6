#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Float8.h"
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

// Of a box about the origin.
bool Contains(Vec2 halfSize, Vec2 p) {
    return std::fabs(p.x) <= halfSize.x && std::fabs(p.y) <= halfSize.y;
}

// From the nearest point of such a box to a point outside it.
Vec2 GetWayOut(Vec2 halfSize, Vec2 p) {
    return {p.x - std::clamp(p.x, -halfSize.x, halfSize.x), p.y - std::clamp(p.y, -halfSize.y, halfSize.y)};
}

// From such a box to a point, negative inside.
real GetBoxDistance(Vec2 halfSize, Vec2 p) {
    const Vec2 q(std::fabs(p.x) - halfSize.x, std::fabs(p.y) - halfSize.y);
    return math::Length({std::max(q.x, 0.0f), std::max(q.y, 0.0f)}) + std::min(std::max(q.x, q.y), 0.0f);
}

// Whether an outline of this area fills its tight box, but for rounding.
bool IsRectangle(Vec2 halfSize, real area) {
    constexpr real ROUNDING = 1e-5f;  // of the area
    return area > 4 * halfSize.x * halfSize.y * (1 - ROUNDING);
}

// Into the frame of a box.
RigidTransform MakeToBox(const OBB2D& box) {
    const Vec2 axis = box.axis[0];
    const RigidTransform turn(axis.x, -axis.y, 0, 0);
    const Vec2 center = turn(box.center);
    return {turn.cos, turn.sin, -center.x, -center.y};
}

// A direction from the frame that a transform leads to back to where it comes from.
Vec2 RotateBack(const RigidTransform& transform, Vec2 v) {
    return {transform.cos * v.x + transform.sin * v.y, transform.cos * v.y - transform.sin * v.x};
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
    CheckSelfIntersection();
    // Asked last, since the loops of a figure of eight may cancel out and it deserves its own message.
    if (!sound || !std::isfinite(m_inertiaSansMass)) THROW(BadDataException, "Bad polygon");
    m_obb = OBB2D::BuildBest(m_vertices.data(), m_vertices.size());
    m_isRectangle = IsRectangle(m_obb.halfSize, m_area);
    m_boundingCircle = CalcBoundingCircle(m_vertices);
    m_sidePoints = FindSidePoints(m_vertices);
    m_localToBox = MakeToBox(m_obb);
    m_map = new DistanceMap(m_vertices, m_obb);
    m_sides = new OutlineSides(m_vertices);
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

// All pairs of edges. Edges whose boxes are apart are not asked: they cannot cross, and the answer for
// nearly collinear ones, such as those of a slanted side with points put in, would be rounding noise.
void Polygon::CheckSelfIntersection() const {
    const LineList lines = GetLines();
    const size_t n = lines.size();
    util::VectorPOD<math::BoundingBox2f> boxes;
    boxes.reserve(n);
    for (const Line& line : lines) {
        math::BoundingBox2f box;
        box.Extend(line.start);
        box.Extend(line.end);
        boxes.push_back(box);
    }
    for (size_t i = 0; i < n; ++i) {
        const Line a = lines[i];
        const math::BoundingBox2f box = boxes[i];
        for (size_t j = i + 1; j < n; ++j) {
            if (!box.Overlaps(boxes[j])) continue;
            if (!math::SegmentsIntersect(a.start, a.end, lines[j].start, lines[j].end)) continue;
            THROW(BadDataException, "Self-intersecting polygon");
        }
    }
}

void Polygon::SetTransform(const RigidTransform& transform) {
    Geom::SetTransform(transform);
    m_worldToBox = m_localToBox * GetInvTransform();
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

static LineList MakeLines(const Vec2List& vertices) {
    const size_t n = vertices.size();
    LineList lines;
    lines.reserve(n);
    for (size_t i = 0; i < n; ++i) lines.push_back({vertices[i], vertices[(i + 1) % n]});
    return lines;
}

LineList Polygon::GetLines() const {
    return MakeLines(m_vertices);
}

const LineList& Polygon::GetWorldLines() const {
    if (m_worldLines.empty()) m_worldLines = MakeLines(m_worldVertices);
    return m_worldLines;
}

const Vec2List& Polygon::GetWorldSidePoints() const {
    if (!m_worldSidePoints.empty()) return m_worldSidePoints;
    m_worldSidePoints.reserve(m_sidePoints.size());
    for (const SidePoint& point : m_sidePoints) m_worldSidePoints.push_back(GetTransform()(point.place));
    return m_worldSidePoints;
}

const OutlinePieces& Polygon::GetPieces(real length) const {
    if (m_pieceLength != length) {
        m_pieces = CutPolygon(m_vertices, length);
        m_pieceLength = length;
    }
    return m_pieces;
}

Vec2 Polygon::GetNormal(Vec2 point) const {
    const Vec2 p = m_worldToBox(point);
    if (std::fabs(p.x) > m_obb.halfSize.x || std::fabs(p.y) > m_obb.halfSize.y) return Vec2();
    return RotateBack(m_worldToBox, math::Normalized(m_map->SampleGradient(p)));
}

real Polygon::GetFieldDistance(Vec2 point) const {
    const Vec2 p = m_worldToBox(point);
    if (m_isRectangle) return GetBoxDistance(m_obb.halfSize, p);
    if (Contains(m_map->GetBox().halfSize, p)) return m_map->SampleDistance(p);
    return math::Length(GetWayOut(m_obb.halfSize, p));
}

bool Polygon::FindInside(Vec2 point, real& distance, Vec2& normal) const {
    const Vec2 p = GetInvTransform()(point);
    const OutlineSides::Place place = m_sides->Find(m_vertices, p, distance, normal);
    if (place == OutlineSides::Place::OUTSIDE) return false;
    if (place == OutlineSides::Place::DEEP) {
        Vec2 gradient;
        if (!m_map->SampleInside(m_worldToBox(point), distance, gradient)) return false;
        normal = RotateBack(m_worldToBox, math::Normalized(gradient));
    } else {
        normal = GetTransform().Rotate(normal);
    }
    return true;
}

bool Polygon::FindOpposite(Vec2 point, const OutlineSides::Corner& corner, real& distance,
                           Vec2& normal) const {
    const RigidTransform& toLocal = GetInvTransform();
    const OutlineSides::Corner local(toLocal.Rotate(corner.directions[0]),
                                     toLocal.Rotate(corner.directions[1]));
    if (!m_sides->FindOpposite(m_vertices, toLocal(point), local, distance, normal)) return false;
    normal = GetTransform().Rotate(normal);
    return true;
}

// ---- several points at a time --------------------------------------------------------------------------

// FEW points or directions in the frame of the tight box.
struct Polygon::InBox {
    Float4 x, y;

    static constexpr uint32_t ALL = 0xFu;  // lanes, as bits

    InBox GetSize() const { return {Max(x, -x), Max(y, -y)}; }
    // The lanes within a box about the origin, as bits.
    uint32_t FindWithin(Float4 halfX, Float4 halfY) const {
        const InBox size = GetSize();
        return ~(MaskLess4(halfX, size.x) | MaskLess4(halfY, size.y)) & ALL;
    }
};

inline Polygon::InBox Polygon::TurnToBox(const Vec2* directions) const {
    constexpr uint32_t PLACES[FEW] = {0, 1, 2, 3};
    Float4 x, y;
    GatherPairs4(&directions->x, PLACES, x, y);
    const Float4 c = Float4::Fill(m_worldToBox.cos), s = Float4::Fill(m_worldToBox.sin);
    return {c * x - s * y, s * x + c * y};
}

inline Polygon::InBox Polygon::ToBox(const Vec2* points) const {
    const InBox turned = TurnToBox(points);
    return {turned.x + Float4::Fill(m_worldToBox.x), turned.y + Float4::Fill(m_worldToBox.y)};
}

inline uint32_t Polygon::FindMapped(const InBox& points) const {
    const Vec2 half = m_map->GetBox().halfSize;
    return points.FindWithin(Float4::Fill(half.x), Float4::Fill(half.y));
}

// GetFieldDistance, operation by operation.
Float4 Polygon::GetFieldDistances(const InBox& points) const {
    if (m_isRectangle) return GetBoxSlopes(points).distances;
    const Float4 distances = m_map->SampleDistances(points.x, points.y);
    const uint32_t isMapped = FindMapped(points);
    if (isMapped == InBox::ALL) return distances;
    DistanceMap::FourSlopes slopes = {distances, Float4::Zero(), Float4::Zero()};
    TakeWaysOut(points, isMapped, slopes);
    return slopes.distances;
}

DistanceMap::FourSlopes Polygon::GetFieldSlopes(const InBox& points) const {
    if (m_isRectangle) return GetBoxSlopes(points);
    DistanceMap::FourSlopes slopes = m_map->SampleSlopes(points.x, points.y);
    const uint32_t isMapped = FindMapped(points);
    if (isMapped != InBox::ALL) TakeWaysOut(points, isMapped, slopes);
    return slopes;
}

// GetBoxDistance, operation by operation. Inside, the way out leads across the nearest side.
DistanceMap::FourSlopes Polygon::GetBoxSlopes(const InBox& points) const {
    const Float4 zero = Float4::Zero(), one = Float4::Fill(1), two = Float4::Fill(2);
    const InBox size = points.GetSize();
    const Float4 x = size.x - Float4::Fill(m_obb.halfSize.x), y = size.y - Float4::Fill(m_obb.halfSize.y);
    const Float4 outX = Max(x, zero), outY = Max(y, zero), nearest = Max(x, y);
    const Float4 isInside = one - KeepWhereLess(one, zero, nearest);
    const Float4 isAcrossX = KeepWhereLess(isInside, y, x), isAcrossY = isInside - isAcrossX;
    const Float4 sideX = KeepWhereLess(two, zero, points.x) - one;
    const Float4 sideY = KeepWhereLess(two, zero, points.y) - one;
    return {Sqrt(outX * outX + outY * outY) + Min(nearest, zero), sideX * (outX + isAcrossX),
            sideY * (outY + isAcrossY)};
}

uint32_t Polygon::FindNear(const Vec2* points, real limit, real* distances, Vec2* normals) const {
    const DistanceMap::FourSlopes slopes = GetFieldSlopes(ToBox(points));
    const uint32_t isNear = MaskLess4(slopes.distances, Float4::Fill(limit));
    if (isNear == 0) return 0;
    StoreNormals(slopes.x, slopes.y, normals);
    StoreLoose(distances, slopes.distances);
    return isNear;
}

// Of directions in the frame of the box; math::Normalized, operation by operation.
inline void Polygon::StoreNormals(Float4 x, Float4 y, Vec2* normals) const {
    const Float4 least = Float4::Fill(1e-07f), one = Float4::Fill(1);
    const Float4 length = Sqrt(x * x + y * y);
    const Float4 scale = one / Max(length, least);
    x = KeepWhereLess(x * scale, least, length);
    y = KeepWhereLess(y * scale, least, length);
    const Float4 c = Float4::Fill(m_worldToBox.cos), s = Float4::Fill(m_worldToBox.sin);
    alignas(16) real worldX[FEW], worldY[FEW];
    Store(worldX, c * x + s * y);
    Store(worldY, c * y - s * x);
    for (size_t k = 0; k < FEW; ++k) normals[k] = {worldX[k], worldY[k]};
}

// Where points lie beyond the map: those from the tight box.
void Polygon::TakeWaysOut(const InBox& points, uint32_t isMapped, DistanceMap::FourSlopes& slopes) const {
    alignas(16) real x[FEW], y[FEW], distances[FEW], outX[FEW], outY[FEW];
    Store(x, points.x);
    Store(y, points.y);
    Store(distances, slopes.distances);
    Store(outX, slopes.x);
    Store(outY, slopes.y);
    for (size_t k = 0; k < FEW; ++k) {
        if ((isMapped >> k & 1) != 0) continue;
        const Vec2 out = GetWayOut(m_obb.halfSize, {x[k], y[k]});
        distances[k] = math::Length(out);
        outX[k] = out.x;
        outY[k] = out.y;
    }
    slopes = {Float4::Load(distances), Float4::Load(outX), Float4::Load(outY)};
}

// Most points are too far from the box, or have nothing of it before them.
uint32_t Polygon::FindGaps(const Vec2* points, const Vec2* directions, real reach, real* gaps) const {
    const Float4 far = Float4::Fill(reach);
    const Float4 halfX = Float4::Fill(m_obb.halfSize.x), halfY = Float4::Fill(m_obb.halfSize.y);
    const InBox p = ToBox(points), d = TurnToBox(directions);
    const InBox size = d.GetSize();
    const uint32_t isBefore = MaskLess4(p.x * d.x + p.y * d.y, size.x * halfX + size.y * halfY);
    uint32_t found = p.FindWithin(halfX + far, halfY + far) & isBefore;
    if (found == 0) return 0;
    const Float4 here = GetFieldDistances(p);
    found &= MaskLess4(here, far);
    if (found == 0) return 0;
    const Float4 there = GetFieldDistances({p.x + d.x * far, p.y + d.y * far});
    StoreLoose(gaps, here);
    return found & MaskLess4(there, here);
}

struct Polygon::Block {
    narrow::Float8 x, y;

    // The points, transformed; RigidTransform, operation by operation.
    Block(const Vec2* points, const RigidTransform& transform) {
        const auto fill = [](real number) { return narrow::Float8::Fill(number); };
        narrow::Float8 px, py;
        narrow::Float8::LoadPairs(points, px, py);
        const narrow::Float8 c = fill(transform.cos), s = fill(transform.sin);
        x = c * px - s * py + fill(transform.x);
        y = s * px + c * py + fill(transform.y);
    }
};

// Most points lie outside the tight box.
uint32_t Polygon::FindInside(const Vec2* points, real* distances, Vec2* normals) const {
    const Block inBox(points, m_worldToBox);
    const auto isBeyond = [](narrow::Float8 place, real half) {
        return MaskLess(narrow::Float8::Fill(half), Max(place, -place));
    };
    uint32_t inside =
        ~(isBeyond(inBox.x, m_obb.halfSize.x) | isBeyond(inBox.y, m_obb.halfSize.y)) & ((1u << BLOCK) - 1);
    if (inside == 0) return 0;
    if (m_sides->IsSimple()) {
        const Block local(points, GetInvTransform());
        inside &= m_sides->FindInside(local.x, local.y, distances, normals);
    }
    for (uint32_t rest = inside; rest != 0; rest &= rest - 1) {
        const auto k = static_cast<uint32_t>(__builtin_ctz(rest));
        if (m_sides->IsSimple()) {
            normals[k] = GetTransform().Rotate(normals[k]);
        } else if (!FindInside(points[k], distances[k], normals[k])) {
            inside &= ~(1u << k);
        }
    }
    return inside;
}

// ---- outlines and lines -------------------------------------------------------------------------------

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

bool BoxesOverlap(const OBB2D& a, const OBB2D& b, real distance) {
    const Vec2 d = b.center - a.center;
    // Cosines of the angles between the axes: first of a's first one.
    const real c00 = std::fabs(math::Dot(a.axis[0], b.axis[0])),
               c01 = std::fabs(math::Dot(a.axis[0], b.axis[1]));
    const real c10 = std::fabs(math::Dot(a.axis[1], b.axis[0])),
               c11 = std::fabs(math::Dot(a.axis[1], b.axis[1]));
    const Vec2 ha = a.halfSize, hb = b.halfSize;
    return std::fabs(math::Dot(d, a.axis[0])) <= ha.x + (hb.x * c00 + hb.y * c01) + distance &&
           std::fabs(math::Dot(d, a.axis[1])) <= ha.y + (hb.x * c10 + hb.y * c11) + distance &&
           std::fabs(math::Dot(d, b.axis[0])) <= hb.x + (ha.x * c00 + ha.y * c10) + distance &&
           std::fabs(math::Dot(d, b.axis[1])) <= hb.y + (ha.x * c01 + ha.y * c11) + distance;
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
