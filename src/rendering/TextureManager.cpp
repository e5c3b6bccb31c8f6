#include "rendering/TextureManager.h"

#include <algorithm>

#include "rendering/Context.h"
#include "rendering/Gl.h"

namespace rendering {

namespace {

uint32_t GetFrameSide(int pixels) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    const auto wanted = static_cast<uint32_t>(std::clamp(pixels, 1, std::max(limit, 1)));
    if (HasFreeTextureSizes()) return wanted;
    uint32_t side = 1;
    while (side < wanted) side *= 2;
    return side;
}

}  // namespace

TextureManager::TextureManager() {
    TextureMentor::SetDefault(Get("blank"));
}

TextureMentorPtr TextureManager::Get(const String& name, const Texture::ImageType& type) {
    const Key key(name, type);
    const TextureMentorPtr mentor = Register(key, [key] { return Instance().Load(key); });
    m_files[key] = mentor;
    return mentor;
}

Texture* TextureManager::Load(const Key& key) {
    util::Ahead<Picture> ahead = std::move(m_readAhead[key]);
    m_readAhead.erase(key);
    return TextureFromPath(key.first, key.second, std::move(ahead));
}

void TextureManager::ReadAhead() {
    m_readAhead.clear();
    for (const auto& [key, mentor] : m_files) {
        if (!mentor->IsLoaded()) m_readAhead[key] = BeginPicture(key.first, key.second);
    }
}

TextureMentorPtr TextureManager::Get(const String& name, const ImageRGBA32Ptr& image,
                                     const Texture::ImageType& type) {
    return Register({name, type}, [image, type] { return TextureFromImage(image, type); });
}

TextureMentorPtr TextureManager::Get(const String& name, const ImageFloatPtr& image,
                                     const Texture::ImageType& type) {
    return Register({name, type}, [image, type] { return TextureFromImageFloat(image, type); });
}

TextureMentorPtr TextureManager::MakeForFrame(const Texture::ImageType& type) {
    return Make([type] {
        const math::Vec2i frame = Context::GetSize();
        return new Texture(new BlankImage(GetFrameSide(frame.x), GetFrameSide(frame.y)), type);
    });
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
