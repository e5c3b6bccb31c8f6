#include "physics/WaterFilm.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/LooseBox.h"
#include "physics/Polygon.h"
#include "physics/SolverBody.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr real NEAR = 1.2f;          // spacings from a drop, within which a piece is at its water
constexpr real FAR = 2.5f;           // spacings, from which the head is taken at most
constexpr real DEEPEST = 0.5f;       // gaps inside another shape: what overlaps further is no gap
constexpr size_t MOST_PIECES = 200;  // of a shape
constexpr real LYING_SHARE = 0.77f;  // of a lying drop's pressure: that of the water round it

struct HeadSum {
    real sum = 0;
    real count = 0;

    void Add(real head) {
        sum += head;
        count += 1;
    }
    real GetMean() const { return sum / count; }
};

math::BoundingBox2f GetLooseBox(const Geom& geom) {
    if (geom.GetKind() == Geom::Kind::POLYGON)
        return LooseBox(static_cast<const Polygon&>(geom).GetWorldOBB());
    const Vec2 half(geom.GetBoundingCircle().z, geom.GetBoundingCircle().z);
    return LooseBox(geom.GetPos(), half);
}

// Holds all that is closer than this.
math::BoundingBox2f GetReachBox(const Geom& geom, real distance) {
    constexpr real EVERYWHERE = std::numeric_limits<real>::infinity();
    if (geom.GetKind() == Geom::Kind::PLANE) return {{-EVERYWHERE, -EVERYWHERE}, {EVERYWHERE, EVERYWHERE}};
    math::BoundingBox2f box = GetLooseBox(geom);
    box.Grow(distance);
    return box;
}

real GetGap(const Geom& geom, Vec2 point) {
    if (geom.GetKind() != Geom::Kind::POLYGON) return geom.GetDistance(point);
    return static_cast<const Polygon&>(geom).GetFieldDistance(point);
}

}  // namespace

void WaterFilm::Apply(const BodyList& bodies, const Water& water, const Settings& settings) {
    m_settings = settings;
    m_reach = WIDE_GAP * settings.spacing;
    GatherShapes(bodies, water);
    SealPairs();
    if (m_pieces.empty()) return;
    FindEnds(water);
    SpreadHeads();
    AddForces();
}

// ---- gaps ----------------------------------------------------------------------------------------------

void WaterFilm::GatherShapes(const BodyList& bodies, const Water& water) {
    m_shapes.clear();
    m_planes.clear();
    m_pieces.clear();
    m_sweep.Clear();
    math::BoundingBox2f box = water.grid.GetBounds();
    box.Grow(m_reach);
    for (uint32_t b = 0; b < bodies.size(); ++b) {
        for (const BodyPart& part : bodies[b]->GetParts())
            AddShape(*bodies[b].Get(), b, *part.geom.Get(), box);
    }
}

void WaterFilm::AddShape(AbstractBody& body, uint32_t place, Geom& geom, const math::BoundingBox2f& box) {
    const Shape shape{&body, place, &geom, GetCollisionFlags(body, geom), !body.IsImmovable(), 0, 0};
    if (!geom.m_collideWater || geom.GetKind() == Geom::Kind::OTHER) return;
    if (geom.GetKind() == Geom::Kind::PLANE) {
        m_planes.push_back(shape);
        return;
    }
    math::BoundingBox2f own = GetLooseBox(geom);
    if (!own.Overlaps(box)) return;
    own.Grow(m_reach / 2);
    m_shapes.push_back(shape);
    m_sweep.Add(own.min.x, own.min.y, own.max.x, own.max.y);
}

void WaterFilm::SealPairs() {
    m_sweep.FindPairs();
    for (uint32_t i = 0; i < m_shapes.size(); ++i) {
        for (const uint32_t* j = m_sweep.PartnersBegin(i); j != m_sweep.PartnersEnd(i); ++j) SealPair(i, *j);
        if (!m_shapes[i].isMovable) continue;
        for (const Shape& plane : m_planes) {
            const Vec2 middle(m_shapes[i].geom->GetPos());
            if (!MayTouch(m_shapes[i], plane)) continue;
            if (!(plane.geom->GetDistance(middle) < m_shapes[i].geom->GetBoundingCircle().z * 2 + m_reach))
                continue;
            CutOutline(i);
            Seal(m_shapes[i], plane);
        }
    }
}

void WaterFilm::SealPair(uint32_t a, uint32_t b) {
    if (!MayTouch(m_shapes[a], m_shapes[b])) return;
    for (const uint32_t i : {a, b}) {
        if (m_shapes[i].isMovable) CutOutline(i);
    }
    if (m_shapes[a].isMovable) Seal(m_shapes[a], m_shapes[b]);
    if (m_shapes[b].isMovable) Seal(m_shapes[b], m_shapes[a]);
}

// Into pieces about as long as drops are apart, in the order round the outline.
void WaterFilm::CutOutline(uint32_t index) {
    Shape& shape = m_shapes[index];
    if (shape.begin != shape.end) return;
    shape.begin = static_cast<uint32_t>(m_pieces.size());
    if (shape.geom->GetKind() == Geom::Kind::POLYGON) {
        CutPolygon(*static_cast<const Polygon*>(shape.geom), index);
    } else {
        const real radius = shape.geom->GetBoundingCircle().z;
        const real wanted = std::max(math::TWO_PI * radius / m_settings.spacing, 8.0f);
        const int count = static_cast<int>(std::min(wanted, static_cast<real>(MOST_PIECES)));
        const real angle = math::TWO_PI / static_cast<real>(count);
        for (int i = 0; i < count; ++i) {
            const Vec2 normal(std::cos(angle * static_cast<real>(i)), std::sin(angle * static_cast<real>(i)));
            AddPiece(shape.geom->GetPos() + normal * radius, normal, angle * radius, index);
        }
    }
    shape.end = static_cast<uint32_t>(m_pieces.size());
}

// Edges that go on nearly straight are cut as one.
void WaterFilm::CutPolygon(const Polygon& polygon, uint32_t index) {
    const math::Vec2List& vertices = polygon.GetWorldVertices();
    const size_t count = vertices.size();
    for (size_t i = 0; i < count;) {
        const Vec2 begin = vertices[i];
        const Vec2 first = vertices[i + 1 < count ? i + 1 : 0] - begin;
        Vec2 end = begin + first;
        for (++i; i < count; ++i) {
            const Vec2 next = vertices[i + 1 < count ? i + 1 : 0];
            if (!GoesOn(begin, first, end, next)) break;
            end = next;
        }
        CutEdge(begin, end, index);
    }
}

// Whether the way from `begin` to `end`, which starts along `first`, leads on to `next` without a corner.
bool WaterFilm::GoesOn(Vec2 begin, Vec2 first, Vec2 end, Vec2 next) const {
    constexpr real STRAIGHT = 0.1f;  // spacings that it may turn aside
    const real aside = math::Cross(first, next - begin), along = math::Dot(first, next - end);
    const real limit = STRAIGHT * m_settings.spacing;
    return along > std::fabs(math::Cross(first, next - end)) &&
           aside * aside < limit * limit * math::LengthSquared(first);
}

void WaterFilm::CutEdge(Vec2 begin, Vec2 end, uint32_t index) {
    const Vec2 edge = end - begin;
    const real length = math::Length(edge);
    if (!(length > 0)) return;
    const size_t used = m_pieces.size() - m_shapes[index].begin;
    const real most = static_cast<real>(used < MOST_PIECES ? MOST_PIECES - used : 1);
    const real wanted = std::min(std::max(std::round(length / m_settings.spacing), 1.0f), most);
    const Vec2 normal(edge.y / length, -edge.x / length);
    for (real k = 0; k < wanted; ++k)
        AddPiece(begin + edge * ((k + 0.5f) / wanted), normal, length / wanted, index);
}

void WaterFilm::AddPiece(Vec2 pos, Vec2 normal, real length, uint32_t shape) {
    m_pieces.push_back({pos, normal, length, shape, NONE, 0, false, false, 0});
}

void WaterFilm::Seal(const Shape& shape, const Shape& other) {
    const math::BoundingBox2f near = GetReachBox(*other.geom, m_reach);
    for (uint32_t i = shape.begin; i < shape.end; ++i) {
        Piece& piece = m_pieces[i];
        if (!near.Contains(piece.pos)) continue;
        const real gap = GetGap(*other.geom, piece.pos);
        if (!(gap < m_reach && gap > -DEEPEST * m_reach)) continue;
        // What stands beside the shape does not seal it: there must be something before the piece.
        if (!(GetGap(*other.geom, piece.pos + piece.normal * m_reach) < gap)) continue;
        piece.isSealed = true;
        piece.share = std::max(piece.share, 1 - GetDropShare(gap, m_settings.spacing));
        if (other.begin != other.end) piece.partner = FindPartner(piece, other);
    }
}

uint32_t WaterFilm::FindPartner(const Piece& piece, const Shape& shape) const {
    uint32_t nearest = NONE;
    real least = 4 * m_reach * m_reach;
    for (uint32_t i = shape.begin; i < shape.end; ++i) {
        const real distSq = math::LengthSquared(m_pieces[i].pos - piece.pos);
        if (!(distSq < least) || math::Dot(m_pieces[i].normal, piece.normal) > 0) continue;
        least = distSq;
        nearest = i;
    }
    return nearest;
}

// ---- heads ---------------------------------------------------------------------------------------------

uint32_t WaterFilm::GetNext(uint32_t piece) const {
    const Shape& shape = m_shapes[m_pieces[piece].shape];
    return piece + 1 < shape.end ? piece + 1 : shape.begin;
}

uint32_t WaterFilm::GetLast(uint32_t piece) const {
    const Shape& shape = m_shapes[m_pieces[piece].shape];
    return (piece > shape.begin ? piece : shape.end) - 1;
}

real WaterFilm::GetHead(Vec2 pos, real pressure) const {
    return pressure - m_settings.density * math::Dot(m_settings.gravity, pos);
}

// Open pieces next to sealed ones. What drops there are within a gap stand still, and tell nothing.
void WaterFilm::FindEnds(const Water& water) {
    m_queue.clear();
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        if (m_pieces[i].isSealed || !(m_pieces[GetNext(i)].isSealed || m_pieces[GetLast(i)].isSealed))
            continue;
        const real head = GetHeadBeside(m_pieces[i], water);
        if (IsDry(m_pieces[i], head) && FillPocket(i)) continue;
        m_pieces[i].isReached = true;
        m_pieces[i].head = head;
        m_queue.push_back(i);
    }
}

// Whether there is less pressure than that of one layer of drops.
bool WaterFilm::IsDry(const Piece& piece, real head) const {
    const real layer = m_settings.density * m_settings.spacing * math::Length(m_settings.gravity);
    return head - GetHead(piece.pos, 0) < layer;
}

// A short open way between sealed pieces is a pocket that the water has yet to find its way into. It counts
// as part of the gap: under water nothing stays dry. What does so lies above the head, and feels no pressure.
bool WaterFilm::FillPocket(uint32_t first) {
    constexpr real SHORT = 4;  // spacings
    const bool isForward = m_pieces[GetLast(first)].isSealed;
    const auto step = [&](uint32_t i) { return isForward ? GetNext(i) : GetLast(i); };
    real length = 0;
    uint32_t end = first;
    for (; !m_pieces[end].isSealed; end = step(end)) {
        length += m_pieces[end].length;
        if (length > SHORT * m_settings.spacing || m_pieces[end].isReached) return false;
    }
    for (uint32_t i = first; i != end; i = step(i)) {
        m_pieces[i].isSealed = true;
        m_pieces[i].share = 1;
    }
    return true;
}

// That of the drops near the piece's body, or of the air where none is at the piece.
real WaterFilm::GetHeadBeside(const Piece& piece, const Water& water) const {
    const real near = NEAR * m_settings.spacing, far = FAR * m_settings.spacing;
    const uint32_t body = m_shapes[piece.shape].place;
    HeadSum free, lying;
    bool isNear = false;
    for (const WaterTouches::Found* touch = water.touches.Begin(body); touch != water.touches.End(body);
         ++touch) {
        const uint32_t drop = touch->drop;
        const Vec2 pos = water.grid.GetSortedPoints()[drop];
        const real distSq = math::LengthSquared(pos - piece.pos);
        if (touch->isLet || !(distSq < far * far)) continue;
        const real pressure = water.drops.pressures[drop];
        if (water.liesOnShape[drop]) {
            lying.Add(GetHead(pos, pressure * LYING_SHARE));
        } else {
            free.Add(GetHead(pos, pressure));
        }
        isNear = isNear || distSq < near * near;
    }
    if (!isNear) return GetHead(piece.pos, 0);
    return (free.count > 0 ? free : lying).GetMean();
}

void WaterFilm::SpreadHeads() {
    for (size_t at = 0; at < m_queue.size(); ++at) {
        const uint32_t i = m_queue[at];
        const real head = m_pieces[i].head;
        Reach(GetNext(i), head);
        Reach(GetLast(i), head);
        if (m_pieces[i].isSealed && m_pieces[i].partner != NONE) Reach(m_pieces[i].partner, head);
    }
}

void WaterFilm::Reach(uint32_t index, real head) {
    Piece& piece = m_pieces[index];
    if (!piece.isSealed || piece.isReached) return;
    piece.isReached = true;
    piece.head = head;
    m_queue.push_back(index);
}

void WaterFilm::AddForces() const {
    for (const Piece& piece : m_pieces) {
        if (!piece.isSealed || !piece.isReached) continue;
        const real pressure = piece.head - GetHead(piece.pos, 0);
        if (!(pressure > 0)) continue;
        AddForceAt(*m_shapes[piece.shape].body, piece.normal * (-pressure * piece.share * piece.length),
                   piece.pos);
    }
}

}  // namespace physics
