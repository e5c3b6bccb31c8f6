#include "gui/components/Icon.h"

#include "gui/components/Images.h"
#include "rendering/TextureManager.h"

namespace gui {

Icon::Icon(const String& image, const String& name) : Component(name) {
    SetImage(image);
    const math::Vec2 size = GetImageSize(m_image);
    SetSize(size.x, size.y);
}

void Icon::SetImage(const String& image) {
    m_image = rendering::TextureManager::Instance().Get(image, rendering::Texture::ImageType::Icon());
}

void Icon::DrawComp() {
    Component::DrawComp();
    DrawImage(m_image, {0, 0}, GetSize());
}

}  // namespace gui
