#include "app/tools/Eraser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "app/entities/PlaneEntity.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"

namespace app {

using math::real;
using math::Vec2;
using math::Vec2List;

namespace {

constexpr real MARGIN = 0.12f;          // cm on the screen, to be outside on both sides
constexpr real DEPTH = 0.2f;            // cm on the screen, to be inside of what is not crossed right through
constexpr real GREAT_DEPTH = 1.5f;      // cm on the screen, the same for planes and great shapes
constexpr real GREAT_SHARE = 1.0f / 3;  // of the view that a great shape fills
constexpr real OPPOSITE = -0.5f;        // greatest cosine between the normals of opposite sides
// A walk along the stroke steps by a part of the distance to the surface, and at least by so many cm.
constexpr real STEP_PART = 0.5f;
constexpr real LEAST_STEP = 0.01f;

// One stay of the stroke within a shape.
struct Stay {
    real depth = 0;       // greatest, above 0
    real clearIn = 0;     // greatest distance outside before it
    bool entered = true;  // false when the stroke began inside
    bool left = false;    // false when it ended inside
    Vec2 normalIn;        // of the surface, at the first and the last place inside
    Vec2 normalOut;
};

// Walks along the stroke and notes where it is inside of the shape. The steps follow the distance to the
// surface, so that no part of it deeper than the least step is jumped over.
class Walk {
  public:
    Walk(const physics::Geom& geom, const Vec2List& stroke, real leastStep)
        : m_geom(geom), m_leastStep(leastStep) {
        for (size_t i = 1; i < stroke.size(); ++i) WalkSegment(stroke[i - 1], stroke[i]);
        Visit(stroke.back());
        if (m_isInside) m_stays.push_back(m_stay);
    }

    const std::vector<Stay>& GetStays() const { return m_stays; }
    // The greatest distance outside in the whole of the stroke after the last stay.
    real GetClearOut() const { return m_clear; }

  private:
    void WalkSegment(Vec2 from, Vec2 to) {
        const real length = math::Length(to - from);
        for (real at = 0; at < length;) {
            const Vec2 p = from + (to - from) * (at / length);
            at += std::max(std::fabs(Visit(p)) * STEP_PART, m_leastStep);
        }
    }

    real Visit(Vec2 p) {
        const real distance = m_geom.GetDistance(p);
        if (distance < 0) {
            if (!m_isInside) Enter(p);
            m_lastInside = p;
            m_stay.depth = std::max(m_stay.depth, -distance);
        } else {
            if (m_isInside) Leave();
            m_clear = std::max(m_clear, distance);
        }
        m_hasBegun = true;
        return distance;
    }

    void Enter(Vec2 p) {
        m_isInside = true;
        m_stay = Stay();
        m_stay.clearIn = m_clear;
        m_stay.entered = m_hasBegun;
        m_stay.normalIn = m_geom.GetNormal(p);
        m_clear = 0;
    }

    void Leave() {
        m_isInside = false;
        m_stay.left = true;
        m_stay.normalOut = m_geom.GetNormal(m_lastInside);
        m_stays.push_back(m_stay);
    }

    const physics::Geom& m_geom;
    const real m_leastStep;
    std::vector<Stay> m_stays;
    Stay m_stay;
    Vec2 m_lastInside;
    real m_clear = 0;
    bool m_isInside = false;
    bool m_hasBegun = false;
};

bool GoesRightThrough(const Stay& stay) {
    return stay.entered && stay.left && math::Dot(stay.normalIn, stay.normalOut) < OPPOSITE;
}

// Of the view's area at most.
real ShareOfView(const GeomEntity& shape, const math::BoundingBox2f& view) {
    const math::BoundingBox2f box = shape.GetBoundingBox();
    const Vec2 min(std::max(box.min.x, view.min.x), std::max(box.min.y, view.min.y));
    const Vec2 max(std::min(box.max.x, view.max.x), std::min(box.max.y, view.max.y));
    if (!(max.x > min.x && max.y > min.y)) return 0;
    const Vec2 size = view.GetSize();
    return std::min((max.x - min.x) * (max.y - min.y), shape.GetGeom()->GetArea()) / (size.x * size.y);
}

bool IsGreat(const GeomEntity& shape, const math::BoundingBox2f& view) {
    return dynamic_cast<const PlaneEntity*>(&shape) != nullptr || ShareOfView(shape, view) > GREAT_SHARE;
}

// A stroke that begins or ends inside has no side to be clear of there.
bool IsClearOut(const std::vector<Stay>& stays, size_t i, real clearAtEnd, real margin) {
    if (!stays[i].left) return true;
    return (i + 1 < stays.size() ? stays[i + 1].clearIn : clearAtEnd) >= margin;
}

bool IsClearIn(const Stay& stay, real margin) {
    return !stay.entered || stay.clearIn >= margin;
}

bool CrossesClearly(const GeomEntity& shape, const View& view, const Vec2List& stroke) {
    const real cm = view.GetCmToWorld();
    const bool isGreat = IsGreat(shape, view.GetViewBox());
    const Walk walk(*shape.GetGeom(), stroke, LEAST_STEP * cm);
    const std::vector<Stay>& stays = walk.GetStays();
    for (size_t i = 0; i < stays.size(); ++i) {
        if (!IsClearIn(stays[i], MARGIN * cm)) continue;
        if (!IsClearOut(stays, i, walk.GetClearOut(), MARGIN * cm)) continue;
        if (stays[i].depth >= (isGreat ? GREAT_DEPTH : DEPTH) * cm) return true;
        if (!isGreat && GoesRightThrough(stays[i])) return true;
    }
    return false;
}

EntitySet Widen(const EntitySet& crossed, const EntitySet& selected) {
    EntitySet doomed = crossed;
    const bool hitSelection = std::any_of(crossed.begin(), crossed.end(),
                                          [&](const EntityPtr& entity) { return selected.count(entity); });
    if (hitSelection) doomed.insert(selected.begin(), selected.end());
    if (doomed.size() < 2) return doomed;
    for (auto i = doomed.begin(); i != doomed.end();) {
        i = util::DynamicCast<PlaneEntity>(*i) ? doomed.erase(i) : std::next(i);
    }
    return doomed;
}

}  // namespace

EntitySet FindErased(const Scene& scene, const View& view, const Vec2List& stroke) {
    math::BoundingBox2f box;
    for (const Vec2 p : stroke) box.Extend(p);
    physics::LineList lines;
    for (size_t i = 1; i < stroke.size(); ++i) lines.push_back({stroke[i - 1], stroke[i]});
    EntitySet crossed;
    for (const EntityPtr& entity : scene.GetEntities()) {
        if (!entity->GetBoundingBox().Overlaps(box) || !entity->CrossesLines(lines)) continue;
        const auto shape = util::DynamicCast<GeomEntity>(entity);
        if (!shape || CrossesClearly(*shape, view, stroke)) crossed.insert(entity);
    }
    return Widen(crossed, scene.GetSelection().Get());
}

}  // namespace app
