#include "physics/WaterFilm.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/LooseBox.h"
#include "physics/Polygon.h"
#include "physics/SolverBody.h"
#include "physics/WaterSums.h"

namespace physics {

using math::real;
using math::Vec2;

namespace {

constexpr real WIDEST_GAP = 1.1f;    // spacings
constexpr real NEAR = 1.2f;          // spacings from a drop, within which a piece is at its water
constexpr real FAR = 2.5f;           // spacings, from which the head is taken
constexpr real DEEPEST = 0.5f;       // gaps inside another shape: what overlaps further is no gap
constexpr size_t MOST_PIECES = 200;  // of a shape

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

// Calls visit(drop) for the drops closer than this.
template <class Visit>
void VisitDrops(const WaterFilm::Water& water, Vec2 pos, real distance, Visit visit) {
    constexpr uint32_t BLOCK = 256;
    math::BoundingBox2f box(pos, pos);
    box.Grow(distance);
    water.grid.VisitBox(box, [&](uint32_t begin, uint32_t end) {
        uint32_t drops[BLOCK + NeighborGrid::PADDING];
        for (; begin < end; begin += std::min(BLOCK, end - begin)) {
            const NeighborGrid::Stretch stretch = {begin, begin + std::min(BLOCK, end - begin)};
            const uint32_t count = GetWaterSums().keepNear(water.grid.GetSortedPoints(), stretch, pos,
                                                           distance * distance, drops);
            for (uint32_t k = 0; k < count; ++k) visit(drops[k]);
        }
    });
}

}  // namespace

void WaterFilm::Apply(const BodyList& bodies, const Water& water, const Settings& settings) {
    m_settings = settings;
    m_reach = WIDEST_GAP * settings.spacing;
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
    math::BoundingBox2f box;
    for (size_t i = 0; i < water.grid.GetSize(); ++i) box.Extend(water.grid.GetSortedPoints()[i]);
    box.Grow(m_reach);
    for (const BodyPtr& body : bodies) {
        for (const BodyPart& part : body.Get()->GetParts()) AddShape(*body.Get(), *part.geom.Get(), box);
    }
}

void WaterFilm::AddShape(AbstractBody& body, Geom& geom, const math::BoundingBox2f& box) {
    const Shape shape{&body, &geom, GetCollisionFlags(body, geom), !body.IsImmovable(), 0, 0};
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

void WaterFilm::CutPolygon(const Polygon& polygon, uint32_t index) {
    const math::Vec2List& vertices = polygon.GetWorldVertices();
    const size_t most = std::max<size_t>(MOST_PIECES / vertices.size(), 1);
    for (size_t i = 0; i < vertices.size(); ++i) {
        const Vec2 a = vertices[i];
        const Vec2 edge = vertices[i + 1 < vertices.size() ? i + 1 : 0] - a;
        const real length = math::Length(edge);
        if (!(length > 0)) continue;
        const real wanted = std::min(std::ceil(length / m_settings.spacing), static_cast<real>(most));
        const Vec2 normal(edge.y / length, -edge.x / length);
        for (real k = 0; k < wanted; ++k)
            AddPiece(a + edge * ((k + 0.5f) / wanted), normal, length / wanted, index);
    }
}

void WaterFilm::AddPiece(Vec2 pos, Vec2 normal, real length, uint32_t shape) {
    m_pieces.push_back({pos, normal, length, shape, NONE, false, false, 0});
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

// Pieces beside the water, and those at an end of a gap that lies in the air or in a puddle.
void WaterFilm::FindEnds(const Water& water) {
    m_queue.clear();
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        Piece& piece = m_pieces[i];
        const bool isOpen = !piece.isSealed;
        if (isOpen && !m_pieces[GetNext(i)].isSealed && !m_pieces[GetLast(i)].isSealed) continue;
        LookAround(piece, water);
        if (isOpen && !piece.isReached) {
            piece.isReached = true;
            piece.head = GetHead(piece.pos, 0);
        }
        if (piece.isReached) m_queue.push_back(i);
    }
}

void WaterFilm::LookAround(Piece& piece, const Water& water) {
    const real near = NEAR * m_settings.spacing;
    m_heads.clear();
    bool isNear = false;
    VisitDrops(water, piece.pos, FAR * m_settings.spacing, [&](uint32_t drop) {
        const Vec2 pos = water.grid.GetSortedPoints()[drop];
        if (!water.liesOnShape[drop]) m_heads.push_back(GetHead(pos, water.drops.pressures[drop]));
        if (math::LengthSquared(pos - piece.pos) < near * near) isNear = true;
    });
    if (!isNear || m_heads.empty()) return;
    piece.isReached = true;
    piece.head = GetUpperMean();
}

// The mean of the heads that are not below the mean of all: drops over those that lie on a shape have too
// little.
real WaterFilm::GetUpperMean() const {
    real sum = 0;
    for (const real head : m_heads) sum += head;
    const real mean = sum / static_cast<real>(m_heads.size());
    real upper = 0, count = 0;
    for (const real head : m_heads) {
        if (head < mean) continue;
        upper += head;
        count += 1;
    }
    return count > 0 ? upper / count : mean;
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
        AddForceAt(*m_shapes[piece.shape].body, piece.normal * (-pressure * piece.length), piece.pos);
    }
}

}  // namespace physics
