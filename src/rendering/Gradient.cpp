#include "rendering/Gradient.h"

#include <algorithm>
#include <cmath>

#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace rendering {

namespace {

unsigned char ToByte(float part) {
    return static_cast<unsigned char>(std::lround(std::min(std::max(0.0f, part), 1.0f) * 255));
}

RGBA32 ToTexel(const math::Vec4& color) {
    return {ToByte(color.x), ToByte(color.y), ToByte(color.z), ToByte(color.w)};
}

}  // namespace

Gradient::Gradient(const math::Vec4& start, const math::Vec4& end)
    : m_start(start), m_end(end), m_texture(TextureManager::Make([this] { return MakeTexture(); })) {}

void Gradient::SetColors(const math::Vec4& start, const math::Vec4& end) {
    if (start == m_start && end == m_end) return;
    m_start = start;
    m_end = end;
    m_texture->Unload();
}

Texture* Gradient::MakeTexture() const {
    const ImageRGBA32Ptr image = new ImageRGBA32(2, 1);
    (*image)(0, 0) = ToTexel(m_start);
    (*image)(1, 0) = ToTexel(m_end);
    return TextureFromImage(image, Texture::ImageType::Frame());
}

void Gradient::DrawAcross(math::Vec2 min, math::Vec2 max) const {
    const math::Vec2 corners[4] = {min, {max.x, min.y}, max, {min.x, max.y}};
    Draw(corners);
}

void Gradient::DrawDown(math::Vec2 min, math::Vec2 max) const {
    const math::Vec2 corners[4] = {min, {min.x, max.y}, max, {max.x, min.y}};
    Draw(corners);
}

// Between the middles of the two texels.
void Gradient::Draw(const math::Vec2* corners) const {
    constexpr float START = 0.25f, END = 0.75f, MIDDLE = 0.5f;
    static constexpr math::Vec2 TEX_COORDS[4] = {
        {START, MIDDLE}, {END, MIDDLE}, {END, MIDDLE}, {START, MIDDLE}};
    const ScopedCapability textured(GL_TEXTURE_2D, true);
    const ScopedTexture bound(m_texture->Get());
    Renderer::Instance().DrawPolygon(corners, TEX_COORDS, 4);
}

}  // namespace rendering
