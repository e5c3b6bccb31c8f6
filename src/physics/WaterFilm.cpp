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

constexpr uint32_t FEW = Polygon::FEW;  // pieces that are looked at together

// Which of FEW points are closer to a shape than `reach`, as bits, and so far along their normals closer
// still: what stands beside a piece of an outline does not seal it. Their distances too.
uint32_t FindGaps(const Geom& geom, const Vec2* points, const Vec2* normals, real reach, real* gaps) {
    if (geom.GetKind() == Geom::Kind::POLYGON)
        return static_cast<const Polygon&>(geom).FindGaps(points, normals, reach, gaps);
    uint32_t found = 0;
    for (uint32_t k = 0; k < FEW; ++k) {
        gaps[k] = geom.GetDistance(points[k]);
        if (gaps[k] < reach && geom.GetDistance(points[k] + normals[k] * reach) < gaps[k]) found |= 1u << k;
    }
    return found;
}

// Whether an axis of their boxes tells that two polygons are farther apart than this.
bool AreApart(const Geom& a, const Geom& b, real distance) {
    if (a.GetKind() != Geom::Kind::POLYGON || b.GetKind() != Geom::Kind::POLYGON) return false;
    return !BoxesOverlap(static_cast<const Polygon&>(a).GetWorldOBB(),
                         static_cast<const Polygon&>(b).GetWorldOBB(), distance);
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
    if (AreApart(*m_shapes[a].geom, *m_shapes[b].geom, m_reach)) return;
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
        AddPieces(static_cast<const Polygon*>(shape.geom)->GetPieces(m_settings.spacing),
                  shape.geom->GetTransform(), index);
    } else {
        AddPieces(CutCircle(shape.geom->GetPos(), shape.geom->GetBoundingCircle().z, m_settings.spacing),
                  math::RigidTransform(), index);
    }
    shape.end = static_cast<uint32_t>(m_pieces.size());
}

void WaterFilm::AddPieces(const OutlinePieces& pieces, const math::RigidTransform& place, uint32_t shape) {
    const auto begin = static_cast<uint32_t>(m_pieces.size()), count = static_cast<uint32_t>(pieces.size());
    m_middles.resize(begin + count + FEW - 1);
    m_normals.resize(begin + count + FEW - 1);
    for (uint32_t i = 0; i < count; ++i) {
        m_middles[begin + i] = place(pieces[i].pos);
        m_normals[begin + i] = place.Rotate(pieces[i].normal);
        const uint32_t next = begin + (i + 1 < count ? i + 1 : 0), last = begin + (i > 0 ? i : count) - 1;
        m_pieces.push_back({pieces[i].length, shape, next, last, NONE, 0, false, false, 0});
    }
}

void WaterFilm::Seal(const Shape& shape, const Shape& other) {
    for (uint32_t first = shape.begin; first < shape.end; first += FEW) {
        real gaps[FEW];
        uint32_t found = FindGaps(*other.geom, &m_middles[first], &m_normals[first], m_reach, gaps);
        if (shape.end - first < FEW) found &= (1u << (shape.end - first)) - 1;
        for (; found != 0; found &= found - 1) {
            const auto k = static_cast<uint32_t>(__builtin_ctz(found));
            if (gaps[k] > -DEEPEST * m_reach) SealPiece(first + k, gaps[k], other);
        }
    }
}

void WaterFilm::SealPiece(uint32_t index, real gap, const Shape& other) {
    Piece& piece = m_pieces[index];
    piece.isSealed = true;
    piece.share = std::max(piece.share, 1 - GetDropShare(gap, m_settings.spacing));
    if (other.begin != other.end) piece.partner = FindPartner(index, other);
}

// Among the pieces that face it.
uint32_t WaterFilm::FindPartner(uint32_t piece, const Shape& shape) const {
    const Vec2 middle = m_middles[piece], normal = m_normals[piece];
    uint32_t nearest = NONE;
    real least = 4 * m_reach * m_reach;
    for (uint32_t i = shape.begin; i < shape.end; ++i) {
        const real distSq = math::LengthSquared(m_middles[i] - middle);
        const bool isNearer = (distSq < least) & (math::Dot(m_normals[i], normal) <= 0);
        least = isNearer ? distSq : least;
        nearest = isNearer ? i : nearest;
    }
    return nearest;
}

// ---- heads ---------------------------------------------------------------------------------------------

real WaterFilm::GetHead(Vec2 pos, real pressure) const {
    return pressure - m_settings.density * math::Dot(m_settings.gravity, pos);
}

// Open pieces next to sealed ones, where there is water. What drops there are within a gap stand still, and
// tell nothing.
void WaterFilm::FindEnds(const Water& water) {
    m_queue.clear();
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        const Piece& piece = m_pieces[i];
        if (piece.isSealed || !(m_pieces[piece.next].isSealed || m_pieces[piece.last].isSealed)) continue;
        real head = 0;
        const bool isWet = FindHeadBeside(i, water, head);
        if ((!isWet || IsDry(i, head)) && FillPocket(i)) continue;
        if (isWet) Reach(i, head);
    }
}

// Whether there is less pressure than that of one layer of drops.
bool WaterFilm::IsDry(uint32_t piece, real head) const {
    const real layer = m_settings.density * m_settings.spacing * math::Length(m_settings.gravity);
    return head - GetHead(m_middles[piece], 0) < layer;
}

// A short open way between sealed pieces is a pocket that the water has yet to find its way into. It counts
// as part of the gap: under water nothing stays dry. What does so lies above the head, and feels no pressure.
bool WaterFilm::FillPocket(uint32_t first) {
    constexpr real SHORT = 4;  // spacings
    const bool isForward = m_pieces[m_pieces[first].last].isSealed;
    const auto step = [&](uint32_t i) { return isForward ? m_pieces[i].next : m_pieces[i].last; };
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

// That of the drops near the piece's body, if there is one at the piece.
bool WaterFilm::FindHeadBeside(uint32_t piece, const Water& water, real& head) const {
    const Vec2 middle = m_middles[piece];
    const real near = NEAR * m_settings.spacing, far = FAR * m_settings.spacing;
    const uint32_t body = m_shapes[m_pieces[piece].shape].place;
    HeadSum free, lying;
    bool isNear = false;
    for (const WaterTouches::Found* touch = water.touches.Begin(body); touch != water.touches.End(body);
         ++touch) {
        const uint32_t drop = touch->drop;
        const Vec2 pos = water.grid.GetSortedPoints()[drop];
        const real distSq = math::LengthSquared(pos - middle);
        if (touch->isLet || !(distSq < far * far)) continue;
        const real pressure = water.drops.pressures[drop];
        if (water.liesOnShape[drop]) {
            lying.Add(GetHead(pos, pressure * LYING_SHARE));
        } else {
            free.Add(GetHead(pos, pressure));
        }
        isNear = isNear || distSq < near * near;
    }
    if (isNear) head = (free.count > 0 ? free : lying).GetMean();
    return isNear;
}

void WaterFilm::SpreadHeads() {
    for (size_t at = 0; at < m_queue.size(); ++at) {
        const Piece& piece = m_pieces[m_queue[at]];
        Follow(piece.next, piece.head);
        Follow(piece.last, piece.head);
        if (piece.isSealed && piece.partner != NONE) Follow(piece.partner, piece.head);
    }
}

void WaterFilm::Follow(uint32_t index, real head) {
    if (m_pieces[index].isSealed && !m_pieces[index].isReached) Reach(index, head);
}

void WaterFilm::Reach(uint32_t index, real head) {
    Piece& piece = m_pieces[index];
    piece.isReached = true;
    piece.head = head;
    m_queue.push_back(index);
}

void WaterFilm::AddForces() const {
    for (uint32_t i = 0; i < m_pieces.size(); ++i) {
        const Piece& piece = m_pieces[i];
        if (!piece.isSealed || !piece.isReached) continue;
        const real pressure = piece.head - GetHead(m_middles[i], 0);
        if (!(pressure > 0)) continue;
        AddForceAt(*m_shapes[piece.shape].body, m_normals[i] * (-pressure * piece.share * piece.length),
                   m_middles[i]);
    }
}

}  // namespace physics
