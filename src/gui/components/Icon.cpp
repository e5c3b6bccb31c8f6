#include "gui/components/Icon.h"

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace gui {

Icon::Icon(const String& image, const String& name) : Component(name) {
    SetImage(image);
    if (const rendering::TexturePtr texture = m_image->Get()) {
        const math::Vec2 size = texture->GetUnits();
        SetSize(size.x, size.y);
    }
}

void Icon::SetImage(const String& image) {
    m_image = rendering::TextureManager::Instance().Get(image, rendering::Texture::ImageType::Icon());
}

void Icon::DrawComp() {
    Component::DrawComp();
    const rendering::TexturePtr texture = m_image->Get();
    if (!texture) return;
    const rendering::ScopedTexture bound(texture);
    rendering::Renderer::Instance().DrawQuad({0, 0}, GetSize(), {0, 1}, {1, 0});
}

}  // namespace gui
