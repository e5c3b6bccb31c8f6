#include "app/drawing/SelectionPainter.h"

#include <algorithm>
#include <cmath>

#include "app/entities/GeomEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/scene/Selection.h"
#include "math/Geometry.h"
#include "physics/Geom.h"
#include "physics/Polygon.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/ProfileTree.h"

namespace app {

using math::Vec2;

namespace {

// The line's profile, in parts of half its width from its middle.
constexpr int PROFILE_SIDE = 64;  // texels across
constexpr float CORE = 0.5f;      // bright up to here
constexpr float EDGE = 0.64f;     // dark from here
constexpr float FADE = 0.82f;     // transparent from here on to the end
const rendering::RGBA32 DARK(29, 42, 68, 255);

constexpr int CIRCLE_POINTS = 64;
constexpr float MAX_MITRE = 2;  // of a corner, in half widths

float Ramp(float from, float to, float x) {
    return std::clamp((x - from) / (to - from), 0.0f, 1.0f);
}

rendering::Texture* MakeProfile() {
    const rendering::ImageRGBA32Ptr image = new rendering::ImageRGBA32(PROFILE_SIDE, PROFILE_SIDE);
    for (size_t x = 0; x < PROFILE_SIDE; ++x) {
        const float u = std::fabs((static_cast<float>(x) + 0.5f) / PROFILE_SIDE * 2 - 1);
        const float dark = Ramp(CORE, EDGE, u);
        const auto mix = [dark](uint8_t to) { return static_cast<uint8_t>(255 + (to - 255) * dark); };
        const rendering::RGBA32 texel(mix(DARK.x), mix(DARK.y), mix(DARK.z),
                                      static_cast<uint8_t>(255 * (1 - Ramp(FADE, 1, u))));
        for (size_t y = 0; y < PROFILE_SIDE; ++y) (*image)(x, y) = texel;
    }
    return TextureFromImage(image, rendering::Texture::ImageType::Sprite());
}

math::Vec2List GetCircle(Vec2 center, float radius) {
    math::Vec2List points;
    for (int i = 0; i < CIRCLE_POINTS; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / CIRCLE_POINTS;
        points.push_back(center + Vec2(std::cos(angle), std::sin(angle)) * radius);
    }
    return points;
}

// The stretch of a plane's edge that may be in view.
math::Vec2List GetEdge(const math::Vec3& plane, const math::BoundingBox2f& view) {
    const Vec2 normal(plane.x, plane.y), center = view.GetCenter();
    const Vec2 middle = center - normal * (Dot(normal, center) + plane.z);
    const Vec2 along = math::Perpendicular(normal) * Length(view.GetSize());
    return {middle - along, middle + along};
}

math::Vec2List GetBox(const math::BoundingBox2f& box) {
    return {box.min, {box.max.x, box.min.y}, box.max, {box.min.x, box.max.y}};
}

// Left of the edge from a to b; zero for none.
Vec2 GetNormal(Vec2 a, Vec2 b) {
    const float length = Length(b - a);
    return length > 0 ? math::Perpendicular(b - a) / length : Vec2();
}

math::Vec2List GetStrip(const SpringEntity& spring) {
    const Vec2 a = spring.GetPos(0), b = spring.GetPos(1), side = GetNormal(a, b) * (spring.GetSize() / 2);
    return {a - side, b - side, b + side, a + side};
}

// From a corner to the line's left side, for half a width of 1.
Vec2 GetMitre(Vec2 before, Vec2 after) {
    const Vec2 sum = before + after;
    const float square = Dot(sum, sum);
    if (!(square > 0)) return after;
    return sum * std::min(2 / square, MAX_MITRE / std::sqrt(square));
}

}  // namespace

SelectionPainter::SelectionPainter() : m_profile(rendering::TextureManager::Make(&MakeProfile)) {}

void SelectionPainter::Draw(const Selection& selection, const math::BoundingBox2f& view, float width,
                            const math::Vec3& color) {
    if (selection.IsEmpty()) return;
    PROFILE_SECTION("Selection");
    m_half = width / 2;
    for (const EntityPtr& entity : selection) {
        if (entity->GetBoundingBox().Overlaps(view)) AddOutline(*entity, view);
    }
    const rendering::TexturePtr profile = m_profile->Get();
    if (!profile) return m_strokes.Clear();
    const rendering::ScopedColor colored(math::Vec4(color.x, color.y, color.z, 1));
    const rendering::ScopedTexture bound(profile);
    m_strokes.DrawAndClear();
}

void SelectionPainter::AddOutline(const Entity& entity, const math::BoundingBox2f& view) {
    const auto* const shape = dynamic_cast<const GeomEntity*>(&entity);
    const physics::Geom* const geom = shape ? shape->GetGeom().Get() : nullptr;
    if (const auto* const polygon = dynamic_cast<const physics::Polygon*>(geom)) {
        AddStroke(polygon->GetWorldVertices(), true);
    } else if (const auto* const circle = dynamic_cast<const physics::Circle*>(geom)) {
        AddStroke(GetCircle(circle->GetPos(), circle->m_radius), true);
    } else if (const auto* const plane = dynamic_cast<const physics::Plane*>(geom)) {
        AddStroke(GetEdge(plane->GetPlane(), view), false);
    } else if (const auto* const spring = dynamic_cast<const SpringEntity*>(&entity)) {
        AddStroke(GetStrip(*spring), true);
    } else {
        AddStroke(GetBox(entity.GetBoundingBox()), true);
    }
}

void SelectionPainter::AddStroke(const math::Vec2List& points, bool closed) {
    const size_t n = points.size(), nEdges = closed ? n : n - 1;
    const auto normalOf = [&](size_t edge) { return GetNormal(points[edge % n], points[(edge + 1) % n]); };
    const auto mitreAt = [&](size_t corner) {
        const bool isEnd = !closed && (corner == 0 || corner == nEdges);
        const Vec2 before = normalOf(isEnd && corner == 0 ? 0 : corner + n - 1);
        return GetMitre(before, isEnd ? before : normalOf(corner)) * m_half;
    };
    static constexpr Vec2 TEX_COORDS[4] = {{1, 0.5f}, {1, 0.5f}, {0, 0.5f}, {0, 0.5f}};
    for (size_t i = 0; i < nEdges; ++i) {
        const Vec2 a = points[i], b = points[(i + 1) % n], toA = mitreAt(i),
                   toB = mitreAt((i + 1) % (closed ? n : n + 1));
        const Vec2 corners[4] = {a - toA, b - toB, b + toB, a + toA};
        m_strokes.AddQuad(corners, TEX_COORDS);
    }
}

}  // namespace app
