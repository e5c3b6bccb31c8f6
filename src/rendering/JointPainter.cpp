#include "rendering/JointPainter.h"

#include <algorithm>
#include <cmath>

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace rendering {

using math::Vec2;
using math::Vec3;

namespace {

constexpr int COIL_SIZE = 64;  // texels
constexpr int COIL_TURNS = 3;
constexpr float WIRE_RADIUS = 4;   // texels
constexpr float COIL_RADIUS = 26;  // texels, from the axis to the middle of the wire
constexpr float REAR_BRIGHTNESS = 0.45f;
constexpr int SAMPLES_PER_TURN = 96;  // of the wire

// How mipmaps and a strip of any length ask for the coil: repeated along it, clamped across.
Texture::ImageType CoilType() {
    Texture::ImageType type = Texture::ImageType::Sprite();
    type.clampS = 0;
    return type;
}

// The shortest way between two places on a picture that repeats.
float WrapDistance(float a, float b) {
    const float d = std::fabs(a - b);
    return std::min(d, COIL_SIZE - d);
}

// The wire is the helix x = t / turns, y = sin t, seen from the side; cos t > 0 is the half that is nearer.
// What is nearer covers what is behind.
RGBA32 CoilTexel(int x, int y) {
    float nearest = -2, brightness = 0, alpha = 0;
    for (int i = 0; i < COIL_TURNS * SAMPLES_PER_TURN; ++i) {
        const float turn = static_cast<float>(i) / SAMPLES_PER_TURN, t = math::TWO_PI * turn;
        const float wireX = turn * COIL_SIZE / COIL_TURNS;
        const float wireY = 0.5f * (COIL_SIZE - 1) + COIL_RADIUS * std::sin(t);
        const float d = std::hypot(WrapDistance(static_cast<float>(x), wireX), static_cast<float>(y) - wireY);
        const float cover = std::clamp(WIRE_RADIUS + 0.5f - d, 0.0f, 1.0f);
        const float depth = std::cos(t);
        if (cover <= 0 || (depth < nearest && cover <= alpha)) continue;
        const float roundness = std::sqrt(std::max(0.0f, 1 - d * d / (WIRE_RADIUS * WIRE_RADIUS)));
        const float light = REAR_BRIGHTNESS + (1 - REAR_BRIGHTNESS) * (depth + 1) / 2;
        const float shaded = light * (0.6f + 0.4f * roundness);
        if (depth >= nearest || shaded > brightness) brightness = shaded;
        nearest = std::max(nearest, depth);
        alpha = std::max(alpha, cover);
    }
    const auto byte = [](float v) { return static_cast<unsigned char>(std::lround(v * 255)); };
    return {byte(brightness), byte(brightness), byte(brightness), byte(alpha)};
}

}  // namespace

JointPainter::JointPainter()
    : m_hinge(TextureManager::Instance().Get("hinge.png")),
      m_fixJoint(TextureManager::Instance().Get("fixjoint.png")),
      m_coil(TextureManager::Instance().Get("spring", MakeCoilImage(), CoilType())) {}

ImageRGBA32Ptr JointPainter::MakeCoilImage() {
    const ImageRGBA32Ptr image = new ImageRGBA32(COIL_SIZE, COIL_SIZE);
    for (int y = 0; y < COIL_SIZE; ++y) {
        for (int x = 0; x < COIL_SIZE; ++x) {
            (*image)(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) = CoilTexel(x, y);
        }
    }
    return image;
}

void JointPainter::DrawHinge(const math::RigidTransform& place, float size, const Vec3& color) {
    DrawIcon(m_hinge, place, size, color);
}

void JointPainter::DrawFixJoint(const math::RigidTransform& place, float size, const Vec3& color) {
    DrawIcon(m_fixJoint, place, size, color);
}

void JointPainter::DrawIcon(const TextureMentorPtr& texture, const math::RigidTransform& place, float size,
                            const Vec3& color) {
    const ScopedColor tinted(color);
    const ScopedTexture bound(texture->Get());
    const Vec2 c = place.GetTranslation();
    const Vec2 u = place.Rotate({size / 2, 0}), v = place.Rotate({0, size / 2});
    const Vec2 corners[] = {c - u - v, c + u - v, c + u + v, c - u + v};
    const Vec2 texCoords[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    Renderer::Instance().DrawPolygon(corners, texCoords, 4);
}

int JointPainter::GetCoilCount(float length, float width) {
    constexpr float MOST = 10000;
    const float count = std::floor(length / width + 0.5f);
    return count >= 1 ? static_cast<int>(std::min(count, MOST)) : 1;
}

void JointPainter::DrawSpring(Vec2 from, Vec2 to, float width, float restLength, const Vec3& color) {
    const float length = math::Length(to - from);
    if (!(length > 0)) return;
    const ScopedColor tinted(color);
    const ScopedTexture bound(m_coil->Get());
    const Vec2 along = (to - from) / length;
    const Vec2 side = Vec2(-along.y, along.x) * (width / 2);
    const auto count = static_cast<float>(GetCoilCount(restLength, width));
    const Vec2 corners[] = {from - side, to - side, to + side, from + side};
    const Vec2 texCoords[] = {{0, 0}, {count, 0}, {count, 1}, {0, 1}};
    Renderer::Instance().DrawPolygon(corners, texCoords, 4);
}

}  // namespace rendering
