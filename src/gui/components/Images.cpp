#include "gui/components/Images.h"

#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

namespace gui {

rendering::TextureMentorPtr GetGuiImage(const String& file) {
    return rendering::TextureManager::Instance().Get("gui/vexa/" + file,
                                                     rendering::Texture::ImageType::Icon());
}

math::Vec2 GetImageSize(const rendering::TextureMentorPtr& image) {
    const rendering::TexturePtr texture = image->Get();
    return texture ? texture->GetUnits() : math::Vec2();
}

void DrawImage(const rendering::TextureMentorPtr& image, math::Vec2 min, math::Vec2 max) {
    const rendering::TexturePtr texture = image->Get();
    if (!texture) return;
    const rendering::ScopedTexture bound(texture);
    rendering::Renderer::Instance().DrawQuad(min, max, {0, 1}, {1, 0});
}

}  // namespace gui
