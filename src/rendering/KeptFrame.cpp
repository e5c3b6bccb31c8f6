#include "rendering/KeptFrame.h"

#include <algorithm>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace rendering {

namespace {

constexpr int MAX_SIDE = 4096;  // texels
// Texel for pixel.
constexpr Texture::ImageType PIXELS{GL_RGBA, 0, 1, 1, 0, 0, 0};

// The least power of two that holds the length.
uint32_t GetSide(int length) {
    uint32_t side = 1;
    while (side < static_cast<uint32_t>(length)) side *= 2;
    return side;
}

}  // namespace

void KeptFrame::Keep() {
    const math::Vec2i size = Context::GetSize();
    m_isKept = false;
    if (std::max(size.x, size.y) > MAX_SIDE) return;
    if (!m_texture || m_size != size) {
        m_texture = TextureManager::Make(
            [size] { return new Texture(new BlankImage(GetSide(size.x), GetSide(size.y)), PIXELS); });
        m_size = size;
    }
    const TexturePtr texture = m_texture->Get();
    if (!texture) return;
    texture->Copy({0, 0}, size);
    m_filled = texture;
    m_isKept = true;
}

bool KeptFrame::Show() {
    const TexturePtr texture = m_filled.Get();
    if (!m_isKept || !texture || m_size != Context::GetSize()) return false;
    const ScopedAttribs attribs;
    const ScopedMatrix matrix;
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    Renderer::Instance().SetColor({1, 1, 1, 1});
    {
        const ScopedTexture bound(texture);
        const math::Vec2 used(static_cast<float>(m_size.x) / static_cast<float>(texture->GetWidth()),
                              static_cast<float>(m_size.y) / static_cast<float>(texture->GetHeight()));
        Renderer::Instance().DrawQuad({-1, -1}, {1, 1}, {0, 0}, used);
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    return true;
}

}  // namespace rendering
