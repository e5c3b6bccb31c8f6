#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "rendering/GraphicsResource.h"
#include "rendering/Image.h"
#include "util/Ahead.h"
#include "util/Mentor.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace rendering {

// A GL texture with the image that made it.
class Texture : public GraphicsResource {
  public:
    // How a picture is stored and sampled; flags are zero or not.
    struct ImageType {
        int32_t internalFormat;
        uint32_t mipmaps;
        uint32_t clampS;
        uint32_t clampT;
        uint32_t linearMin;
        uint32_t linearMag;
        uint32_t linearMip;  // interpolate between mipmap levels
        // Without, the border that clamped axes show is transparent black; with it, opaque white: a distance
        // texture means "far outside" by that.
        uint32_t whiteBorder = 0;
        // Texels per GUI unit, for pictures that are drawn at a size of their own.
        uint32_t density = 1;

        // The ways in which the program samples its pictures, all GL_RGBA. Icons and skins have several
        // texels per GUI unit, so that they are crisp at every scale of the interface; with mipmaps they are
        // at the scale of one as well.
        static ImageType Icon();     // icons, cursor, checkboxes: clamped
        static ImageType Tile();     // skins: repeated
        static ImageType Sprite();   // scaled pictures (joints, clouds, water): mipmaps, clamped, smooth
        static ImageType Smooth();   // as a sprite without mipmaps: a formula without detail
        static ImageType Profile();  // the two border pictures, which a shader reads a rim profile from
        // GL_ALPHA: a font sheet, and the distance texture of a polygon.
        static ImageType Font();
        static ImageType Distance();
        // GL_RGBA of the frame buffer: no mipmaps, no clamp, linear.
        static ImageType Frame();
    };

    // Without a context it only keeps its parts, with GL name 0; the resource manager makes it anew once
    // there is one. Throws BadDataException for a format of unknown size.
    Texture(const AbstractImagePtr& image, const ImageType& type);
    ~Texture() noexcept(false) override;

    // The unit is above 0 only with multitexturing (asserted); unit 0 is selected again afterward.
    void Bind(int unit = 0) const;
    void Unbind(int unit = 0) const;

    unsigned int MemoryUsage() const override;

    // A frame buffer that draws into this texture; 0 where there is none. See ScopedTarget.
    unsigned int GetFrameBuffer() const;

    // What GL has now, in RGBA.
    ImageRGBA32Ptr Read() const;

    // Copies the frame from its lower left corner; at most the texture's size and the viewport's.
    void Copy(int x, int y) { Copy({0, 0}, {x, y}); }
    // A part of the frame, to the same place here; pixels from the lower left.
    void Copy(math::Vec2i min, math::Vec2i max);

    uint32_t GetWidth() const { return m_width; }
    uint32_t GetHeight() const { return m_height; }
    math::Vec2 GetUnits() const;  // its size in GUI units
    const AbstractImagePtr& GetImage() const { return m_image; }
    unsigned int GetId() const { return m_id; }  // GL name, 0 when none

  private:
    void Upload();
    void UploadLevels() const;
    void StretchToPowersOfTwo() const;
    void MakeFrameBuffer() const;
    void SetSampling() const;

    AbstractImagePtr m_image;
    uint32_t m_width;   // texels
    uint32_t m_height;  // texels
    ImageType m_type;
    unsigned int m_id = 0;
    uint64_t m_serial = 0;                   // of the upload, unlike m_id never given twice
    uint32_t m_generation = 0;               // of the context that m_id belongs to
    mutable unsigned int m_frameBuffer = 0;  // made at its first use
    mutable bool m_triedFrameBuffer = false;
};
using TexturePtr = util::SharedPtr<Texture>;
using TextureMentor = util::Mentor<Texture>;
using TextureMentorPtr = util::SharedPtr<TextureMentor>;

bool operator<(const Texture::ImageType& a, const Texture::ImageType& b);

// For factories: each gives an object that nobody owns yet.
Texture* TextureFromImage(const ImageRGBA32Ptr& image, Texture::ImageType type);
Texture* TextureFromImageFloat(const ImageFloatPtr& image, Texture::ImageType type);
// The picture `name`, sought below Data/Textures/ by the extensions png, tga, bmp, jpg when it has none.
// Null, with a line at Error, when it cannot be loaded. `ahead`, unless empty, is the reading of that
// picture, as BeginPicture has begun it.
Texture* TextureFromPath(const String& name, Texture::ImageType type, util::Ahead<Picture> ahead = {});
util::Ahead<Picture> BeginPicture(const String& name, Texture::ImageType type);

// Binds for a scope; a null texture is skipped.
class ScopedTexture {
  public:
    explicit ScopedTexture(const TexturePtr& texture, int unit = 0) : m_texture(texture), m_unit(unit) {
        if (m_texture) m_texture->Bind(m_unit);
    }
    ~ScopedTexture() {
        if (m_texture) m_texture->Unbind(m_unit);
    }
    ScopedTexture(const ScopedTexture&) = delete;
    ScopedTexture& operator=(const ScopedTexture&) = delete;

  private:
    TexturePtr m_texture;
    int m_unit;
};

// For a scope drawing goes into a texture, a pixel to a texel from the lower left; the viewport stays. Nests.
class ScopedTarget {
  public:
    // The texture's frame buffer must not be 0.
    explicit ScopedTarget(const Texture& texture);
    ~ScopedTarget();
    ScopedTarget(const ScopedTarget&) = delete;
    ScopedTarget& operator=(const ScopedTarget&) = delete;

  private:
    int m_previous = 0;  // the window's own may be any
};

}  // namespace rendering
