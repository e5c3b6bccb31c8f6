#pragma once

#include <map>
#include <utility>

#include "rendering/Texture.h"
#include "util/Singleton.h"

namespace rendering {

// Hands out textures through mentors, which load them on first use and again after the loss of the context.
// The picture "blank" stands in for one that fails; without it a mentor's value may be empty, and callers
// skip drawing.
class TextureManager : public util::Pointee, public util::Singleton<TextureManager> {
  public:
    TextureManager();

    // The picture file `name`; the same name and type give the same mentor. Loads nothing yet.
    TextureMentorPtr Get(const String& name, const Texture::ImageType& type = Texture::ImageType::Sprite());

    // An image made by the program, kept inside the mentor, under a name of its own.
    TextureMentorPtr Get(const String& name, const ImageRGBA32Ptr& image, const Texture::ImageType& type);
    TextureMentorPtr Get(const String& name, const ImageFloatPtr& image, const Texture::ImageType& type);

    // Room for a frame, a texel for each pixel from the lower left, as far as the driver goes. Not
    // registered, for whoever wants a picture of the frame has one of his own.
    static TextureMentorPtr MakeForFrame(const Texture::ImageType& type);

    // Reads the picture files that are not loaded in the program's second thread; which of them get loaded,
    // and when, stays with their mentors.
    void ReadAhead();

    // Any other way to make a texture, not registered: the caller owns the mentor.
    static TextureMentorPtr Make(const TextureMentor::Factory& factory);

  private:
    using Key = std::pair<String, Texture::ImageType>;

    TextureMentorPtr Register(const Key& key, const TextureMentor::Factory& factory);

    Texture* Load(const Key& key);

    std::map<Key, TextureMentorPtr> m_textures;
    std::map<Key, TextureMentorPtr> m_files;          // those of them that are picture files
    std::map<Key, util::Ahead<Picture>> m_readAhead;  // of those
};

}  // namespace rendering
