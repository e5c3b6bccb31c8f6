#include "rendering/KeptFrame.h"

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/Texels.h"
#include "rendering/TextureManager.h"

namespace rendering {

// Null for a frame that no texture holds.
TexturePtr KeptFrame::Prepare() {
    if (!m_texture) m_texture = TextureManager::MakeForFrame(TexelForPixel());
    const TexturePtr texture = m_texture->Get();
    const math::Vec2i frame = Context::GetSize();
    const bool fits = texture && static_cast<int>(texture->GetWidth()) >= frame.x &&
                      static_cast<int>(texture->GetHeight()) >= frame.y;
    return fits ? texture : nullptr;
}

// Where it can be, the picture is drawn into the texture at once. A copy of the window would be turned upside
// down on its way, which some drivers do slowly.
void KeptFrame::Draw(const std::function<void()>& draw) {
    m_isKept = false;
    const TexturePtr texture = Prepare();
    if (!texture || texture->GetFrameBuffer() == 0) {
        draw();
        if (!texture) return;
        texture->Copy({0, 0}, Context::GetSize());
        return Adopt(texture);
    }
    {
        const ScopedTarget target(*texture);
        draw();
    }
    Adopt(texture);
    Show();
}

void KeptFrame::Adopt(const TexturePtr& texture) {
    m_filled = texture;
    m_size = Context::GetSize();
    m_isKept = true;
}

bool KeptFrame::Show() {
    const TexturePtr texture = m_filled.Get();
    if (!m_isKept || !texture || m_size != Context::GetSize()) return false;
    const ScopedAttribs attribs;
    glDisable(GL_BLEND);
    DrawTexels(texture, {0, 0}, m_size);
    return true;
}

}  // namespace rendering
