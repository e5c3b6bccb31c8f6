#include "rendering/TextureManager.h"

namespace rendering {

TextureManager::TextureManager() {
    TextureMentor::SetDefault(Get("blank"));
}

TextureMentorPtr TextureManager::Get(const String& name, const Texture::ImageType& type) {
    return Register({name, type}, [name, type] { return TextureFromPath(name, type); });
}

TextureMentorPtr TextureManager::Get(const String& name, const ImageRGBA32Ptr& image,
                                     const Texture::ImageType& type) {
    return Register({name, type}, [image, type] { return TextureFromImage(image, type); });
}

TextureMentorPtr TextureManager::Get(const String& name, const ImageFloatPtr& image,
                                     const Texture::ImageType& type) {
    return Register({name, type}, [image, type] { return TextureFromImageFloat(image, type); });
}

TextureMentorPtr TextureManager::Make(const TextureMentor::Factory& factory) {
    return new TextureMentor(factory);
}

TextureMentorPtr TextureManager::Register(const Key& key, const TextureMentor::Factory& factory) {
    TextureMentorPtr& mentor = m_textures[key];
    if (!mentor) mentor = Make(factory);
    return mentor;
}

}  // namespace rendering
