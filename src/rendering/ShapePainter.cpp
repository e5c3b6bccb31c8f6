#include "rendering/ShapePainter.h"

#include <algorithm>
#include <cmath>

#include "rendering/Context.h"
#include "rendering/DistanceCombiner.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"

namespace rendering {

using math::Vec2;
using math::Vec3;
using math::Vec4;

// A convex outline in the view, small enough for the stack.
struct PlaneOutline {
    Vec2 points[8];
    size_t count = 0;

    void Add(Vec2 point) {
        if (count < 8) points[count++] = point;
    }
};

namespace {

constexpr float RIM_BRIGHTNESS = 0.35f;  // of the rim's colour, as a part of the fill's
constexpr float RIM_SOFTNESS = 0.25f;    // part of the rim's width over which the fill darkens to it
constexpr float MAX_CIRCLE_RIM = 0.2f;   // in radii, for a small circle
// The spot that shows a circle's turning, in radii; the shader has the same numbers.
constexpr float SPOT_PLACE = 0.6f;
constexpr float SPOT_RADIUS = 0.11f;
constexpr float SPOT_DARKNESS = 0.35f;
// The ground gets darker with its depth, and lighter just below its rim, as if grass grew there; the shader
// has the same numbers.
constexpr float DEEP_BRIGHTNESS = 0.6f;
constexpr float DEPTH_FALLOFF = 0.3f;  // part of the view's height in which the brightness comes 1/e nearer
constexpr float GRASS_BRIGHTNESS = 0.28f;
constexpr float GRASS_START = 1, GRASS_END = 4;  // depths, in widths of the rim
constexpr float DISC_SCALE = 128.0f / 127;       // the picture's disc leaves a texel free on each side of 256
constexpr Vec2 TEX_COORDS[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

Vec4 Darkened(const Vec4& color, float brightness) {
    return {color.x * brightness, color.y * brightness, color.z * brightness, color.w};
}

void DrawSquare(const math::RigidTransform& transform, float halfSide) {
    const Vec2 c = transform.GetTranslation();
    const Vec2 u = transform.Rotate({halfSide, 0}), v = transform.Rotate({0, halfSide});
    const Vec2 corners[4] = {c - u - v, c + u - v, c + u + v, c - u + v};
    Renderer::Instance().DrawPolygon(corners, TEX_COORDS, 4);
}

// ---- planes -------------------------------------------------------------------------------------------

float PlaneDistance(const Vec3& plane, Vec2 p) {
    return plane.x * p.x + plane.y * p.y + plane.z;
}

// What lies at distances up to `limit`, or with `above` from there on (Sutherland and Hodgman, 1974).
PlaneOutline Clip(const PlaneOutline& outline, const Vec3& plane, float limit, bool above) {
    PlaneOutline result;
    for (size_t i = 0; i < outline.count; ++i) {
        const Vec2 a = outline.points[i], b = outline.points[(i + 1) % outline.count];
        const float da = (PlaneDistance(plane, a) - limit) * (above ? -1.0f : 1.0f);
        const float db = (PlaneDistance(plane, b) - limit) * (above ? -1.0f : 1.0f);
        if (da <= 0) result.Add(a);
        if ((da < 0 && db > 0) || (da > 0 && db < 0)) result.Add(a + (b - a) * (da / (da - db)));
    }
    return result;
}

PlaneOutline ViewOutline(const math::BoundingBox2f& box) {
    PlaneOutline outline;
    outline.Add(box.min);
    outline.Add({box.max.x, box.min.y});
    outline.Add(box.max);
    outline.Add({box.min.x, box.max.y});
    return outline;
}

// What the fill is multiplied by at a depth; `rim` is the rim's width.
float GroundBrightness(float depth, float rim, float falloff) {
    const float t =
        rim > 0 ? std::clamp((depth / rim - GRASS_START) / (GRASS_END - GRASS_START), 0.0f, 1.0f) : 1;
    const float grass = GRASS_BRIGHTNESS * (1 - t * t * (3 - 2 * t));
    return (DEEP_BRIGHTNESS + (1 - DEEP_BRIGHTNESS) * std::exp(-depth / falloff)) * (1 + grass);
}

// A stretch of the view between two distances, its colour going over from one to the other.
struct Band {
    float low, high;
    Vec4 lowColor, highColor;
};

void DrawBand(const PlaneOutline& view, const Vec3& plane, const Band& band) {
    const PlaneOutline part = Clip(Clip(view, plane, band.high, false), plane, band.low, true);
    if (part.count < 3 || !(band.high > band.low)) return;
    Vec4 colors[8];
    for (size_t i = 0; i < part.count; ++i) {
        const float d = PlaneDistance(plane, part.points[i]);
        const float t = std::clamp((d - band.low) / (band.high - band.low), 0.0f, 1.0f);
        colors[i] = band.lowColor * (1 - t) + band.highColor * t;
    }
    Renderer::Instance().DrawColored(part.points, colors, part.count);
}

}  // namespace

// ---- set-up -------------------------------------------------------------------------------------------

ShapePainter::ShapeShader::ShapeShader(const String& name)
    : m_shader(ShaderManager::Instance().Get(name)),
      m_borderSampler(new Uniform(m_shader, "BorderSampler")),
      m_color(new Uniform(m_shader, "Color")),
      m_width(new Uniform(m_shader, "Width")),
      m_pixelSize(new Uniform(m_shader, "PixelSize")),
      m_distSampler(new Uniform(m_shader, "DistSampler")),
      m_distScale(new Uniform(m_shader, "DistScale")),
      m_radius(new Uniform(m_shader, "Radius")) {}

bool ShapePainter::ShapeShader::IsUsable() const {
    return Context::UseShaders() && m_shader->Get();
}

void ShapePainter::ShapeShader::SetCommon(const Vec4& color, float width, float pixelSize,
                                          int borderUnit) const {
    m_borderSampler->Set(borderUnit);
    m_color->Set(color);
    m_width->Set(width);
    m_pixelSize->Set(pixelSize);
}

ShapePainter::ShapePainter() : m_polygonShader("polygon"), m_circleShader("circle"), m_planeShader("plane") {
    TextureManager& textures = TextureManager::Instance();
    m_profile = textures.Get("circleborder", Texture::ImageType::Profile());
    m_profileNoBorder = textures.Get("circleborder_no_border", Texture::ImageType::Profile());
    m_disc = textures.Get("circle_no_border", Texture::ImageType::Sprite());
}

// What a broken-off frame left waiting is dropped.
void ShapePainter::SetView(const ShapeView& view) {
    m_view = view;
    m_discs.Clear();
}

float ShapePainter::GetWidth(float limit) const {
    return std::min(m_view.borderWidth, limit);
}

const TexturePtr& ShapePainter::GetProfile() const {
    return (m_view.borders ? m_profile : m_profileNoBorder)->Get();
}

// ---- circles ------------------------------------------------------------------------------------------

void ShapePainter::DrawCircle(const math::RigidTransform& transform, float radius, const Vec3& color) {
    const ScopedColor scope(color);
    if (m_circleShader.IsUsable()) {
        DrawCircleByShader(transform, radius);
    } else {
        AddCircleOfDiscs(transform, radius);
    }
}

void ShapePainter::DrawCircleByShader(const math::RigidTransform& transform, float radius) {
    Flush();
    const ScopedTexture profile(GetProfile());
    const ScopedShader shader(*m_circleShader.m_shader->Get());
    const float width = m_view.borders ? GetWidth(MAX_CIRCLE_RIM * radius) : 0;
    m_circleShader.SetCommon(Renderer::Instance().GetColor(), width, m_view.pixelSize, 0);
    m_circleShader.m_radius->Set(radius);
    DrawSquare(transform, radius);
}

// Three discs of one picture: the rim's colour, the fill a little smaller, the spot.
void ShapePainter::AddCircleOfDiscs(const math::RigidTransform& transform, float radius) {
    const Vec4 fill = Renderer::Instance().GetColor();
    const auto addDisc = [&](Vec2 center, float discRadius, const Vec4& color) {
        const float half = discRadius * DISC_SCALE;
        m_discs.AddSprite(transform(center), transform.Rotate({half, 0}), transform.Rotate({0, half}), color);
    };
    // The outline fades out within its last pixel, the rim within its inner part; a disc's edge is the middle
    // of that.
    const float outer = std::max(radius - m_view.pixelSize / 2, radius / 2);
    const float inner = radius - (1 - RIM_SOFTNESS / 2) * GetWidth(MAX_CIRCLE_RIM * radius);
    if (m_view.borders) addDisc({0, 0}, outer, Darkened(fill, RIM_BRIGHTNESS));
    addDisc({0, 0}, m_view.borders ? std::min(inner, outer) : outer, fill);
    addDisc({SPOT_PLACE * radius, 0}, SPOT_RADIUS * radius, {0, 0, 0, SPOT_DARKNESS * fill.w});
}

void ShapePainter::Flush() {
    if (m_discs.IsEmpty()) return;
    const ScopedTexture disc(m_disc->Get());
    m_discs.DrawAndClear();
}

// ---- polygons -----------------------------------------------------------------------------------------

void ShapePainter::DrawPolygon(const math::RigidTransform& transform, const math::OBB2D& box,
                               const TexturePtr& distances, float distScale, const Vec3& color) {
    if (!distances) return;
    Flush();
    const Vec2 u = box.axis[0] * box.halfSize.x, v = box.axis[1] * box.halfSize.y;
    m_corners[0] = transform(box.center - u - v);
    m_corners[1] = transform(box.center + u - v);
    m_corners[2] = transform(box.center + u + v);
    m_corners[3] = transform(box.center - u + v);
    // The texture's range ends half a step of its 8 bits before distScale.
    const float width = GetWidth(127 * distScale / 256);
    const ScopedColor scope(color);
    if (m_polygonShader.IsUsable() && HasMultiTexturing()) {
        DrawPolygonByShader(distances, distScale, width);
    } else if (ScopedDistanceCombiner::IsUsable()) {
        DrawPolygonByUnits(distances, distScale, width);
    } else {
        DrawPolygonByAlphaTest(distances, distScale, width);
    }
}

void ShapePainter::DrawBoxQuad() const {
    Renderer::Instance().DrawPolygon(m_corners, TEX_COORDS, 4);
}

void ShapePainter::DrawPolygonByShader(const TexturePtr& distances, float distScale, float width) const {
    const ScopedTexture distTexture(distances, 0);
    const ScopedTexture profile(GetProfile(), 1);
    const ScopedShader shader(*m_polygonShader.m_shader->Get());
    m_polygonShader.SetCommon(Renderer::Instance().GetColor(), m_view.borders ? width : 0,
                              std::min(m_view.pixelSize, width), 1);
    m_polygonShader.m_distSampler->Set(0);
    m_polygonShader.m_distScale->Set(distScale);
    DrawBoxQuad();
}

// A distance d stands in the texture as (d / distScale + 1) / 2.
void ShapePainter::DrawPolygonByUnits(const TexturePtr& distances, float distScale, float width) const {
    const float perUnit = 0.5f / distScale;
    const float pixelSize = std::min(m_view.pixelSize, width);
    const float softness = std::max(pixelSize, RIM_SOFTNESS * width);
    const DistanceRamp outline{0.5f, pixelSize * perUnit};
    const DistanceRamp fill{0.5f - (width - softness / 2) * perUnit, softness * perUnit};
    const Vec4& color = Renderer::Instance().GetColor();
    const Vec4 rim = m_view.borders ? Darkened(color, RIM_BRIGHTNESS) : color;
    const ScopedDistanceCombiner combiner(distances, outline, fill, rim);
    DrawBoxQuad();
}

// Blending is off, or alphas below one half would show through.
void ShapePainter::DrawPolygonByAlphaTest(const TexturePtr& distances, float distScale, float width) const {
    Renderer& renderer = Renderer::Instance();
    const ScopedTexture texture(distances);
    const ScopedCapability noBlending(GL_BLEND, false);
    const ScopedCapability alphaTest(GL_ALPHA_TEST, true);
    const Vec4 fill = renderer.GetColor();
    renderer.SetColor(m_view.borders ? Darkened(fill, RIM_BRIGHTNESS) : fill);
    glAlphaFunc(GL_LESS, 0.5f);
    DrawBoxQuad();
    renderer.SetColor(fill);
    if (!m_view.borders) return;
    glAlphaFunc(GL_LESS, (1 - width / distScale) / 2);
    DrawBoxQuad();
}

// ---- planes -------------------------------------------------------------------------------------------

void ShapePainter::DrawPlane(const Vec3& plane, const Vec3& color) {
    Flush();
    const ScopedColor scope(color);
    if (m_planeShader.IsUsable()) {
        DrawPlaneByShader(plane);
    } else {
        DrawPlaneByBands(plane);
    }
}

void ShapePainter::DrawPlaneByShader(const Vec3& plane) const {
    const PlaneOutline solid = Clip(ViewOutline(m_view.box), plane, 0, false);
    Vec2 texCoords[8];
    for (size_t i = 0; i < solid.count; ++i) {
        const float distance = PlaneDistance(plane, solid.points[i]);
        texCoords[i] = {distance, -distance / GetFalloff()};
    }
    const ScopedTexture profile(GetProfile());
    const ScopedShader shader(*m_planeShader.m_shader->Get());
    m_planeShader.SetCommon(Renderer::Instance().GetColor(), m_view.borders ? m_view.borderWidth : 0,
                            m_view.pixelSize, 0);
    Renderer::Instance().DrawPolygon(solid.points, texCoords, solid.count);
}

float ShapePainter::GetFalloff() const {
    return DEPTH_FALLOFF * m_view.box.GetSize().y;
}

// Below the rim: straight pieces of the curve of brightness, the last one without end.
void ShapePainter::DrawGround(const PlaneOutline& view, const Vec3& plane, float width) const {
    const Vec4 fill = Renderer::Instance().GetColor();
    const float falloff = GetFalloff(), rim = m_view.borders ? width : 0, grassEnd = GRASS_END * width;
    const float depths[] = {width,
                            width * 1.75f,
                            width * 3.25f,
                            grassEnd,
                            grassEnd + 0.3f * falloff,
                            grassEnd + 0.8f * falloff,
                            grassEnd + 1.6f * falloff,
                            grassEnd + 3.2f * falloff};
    for (size_t i = 0; i + 1 < std::size(depths); ++i) {
        DrawBand(view, plane,
                 {-depths[i + 1], -depths[i], Darkened(fill, GroundBrightness(depths[i + 1], rim, falloff)),
                  Darkened(fill, GroundBrightness(depths[i], rim, falloff))});
    }
    constexpr float DEEP = 1e30f;
    const Vec4 deep = Darkened(fill, DEEP_BRIGHTNESS);
    DrawBand(view, plane, {-DEEP, -depths[std::size(depths) - 1], deep, deep});
}

// From the depth to the edge: fill, softening, rim, and the last pixel fading out.
void ShapePainter::DrawPlaneByBands(const Vec3& plane) const {
    const float pixel = m_view.pixelSize;
    const float width = std::max(m_view.borders ? m_view.borderWidth : 0, pixel);
    const float softEnd = std::max(-width + RIM_SOFTNESS * width, -width + pixel);
    const Vec4 fill = Renderer::Instance().GetColor();
    const Vec4 rim = m_view.borders ? Darkened(fill, RIM_BRIGHTNESS) : fill;
    const Vec4 clear{rim.x, rim.y, rim.z, 0};
    const PlaneOutline view = ViewOutline(m_view.box);
    const ScopedCapability untextured(GL_TEXTURE_2D, false);
    DrawGround(view, plane, width);
    const Vec4 top = Darkened(fill, GroundBrightness(width, m_view.borders ? width : 0, GetFalloff()));
    DrawBand(view, plane, {-width, std::min(softEnd, -pixel), top, rim});
    DrawBand(view, plane, {std::min(softEnd, -pixel), -pixel, rim, rim});
    DrawBand(view, plane, {-pixel, 0, rim, clear});
}

}  // namespace rendering
