#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "rendering/Picture.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace rendering {

// A picture in memory, on its way to a texture. Rows go upward as in GL: the first row is the lowest.
class AbstractImage : public util::Pointee {
  public:
    virtual const void* GetPixels() const = 0;  // null: the contents do not matter
    // As glTexImage2D takes them.
    virtual unsigned int GetPixelFormat() const = 0;
    virtual unsigned int GetPixelType() const = 0;

    uint32_t GetWidth() const { return m_width; }
    uint32_t GetHeight() const { return m_height; }

    // The next level of a mipmap, see HalfOf. Null for a single texel and for an image without contents.
    virtual util::SharedPtr<AbstractImage> MakeHalf() const = 0;

  protected:
    AbstractImage(uint32_t width, uint32_t height) : m_width(width), m_height(height) {}

  private:
    uint32_t m_width;
    uint32_t m_height;
};
using AbstractImagePtr = util::SharedPtr<AbstractImage>;

template <class T>
class TImage : public AbstractImage, public Pixels<T> {
  public:
    // Throws std::bad_alloc when there is no memory for it.
    TImage(uint32_t width, uint32_t height, const T& value = T())
        : AbstractImage(width, height), Pixels<T>(width, height, value) {}
    explicit TImage(Pixels<T> pixels)
        : AbstractImage(static_cast<uint32_t>(pixels.GetWidth()), static_cast<uint32_t>(pixels.GetHeight())),
          Pixels<T>(std::move(pixels)) {}

    using AbstractImage::GetHeight;
    using AbstractImage::GetWidth;
    const void* GetPixels() const override { return Pixels<T>::GetData().data(); }

    const String& GetName() const { return m_name; }
    void SetName(const String& name) { m_name = name; }

  private:
    String m_name;  // where it came from, for messages
};

class ImageRGBA32;
class ImageFloat;
using ImageRGBA32Ptr = util::SharedPtr<ImageRGBA32>;
using ImageFloatPtr = util::SharedPtr<ImageFloat>;

class ImageRGBA32 : public TImage<RGBA32> {
  public:
    // Layout of a file of bare pixels, upper row first.
    enum RAWFormat {
        RAW_ALPHA,  // one byte, which fills the alpha channel; the colour is white
        RAW_RGB,    // three bytes, opaque
        RAW_RGBA,   // four bytes
    };

    using TImage::TImage;

    unsigned int GetPixelFormat() const override;
    unsigned int GetPixelType() const override;
    AbstractImagePtr MakeHalf() const override;

    bool HasAlpha() const { return m_hasAlpha; }
    void SetHasAlpha(bool hasAlpha) { m_hasAlpha = hasAlpha; }

    // Throws FileReadException when the file ends before the picture is full, std::runtime_error when it
    // cannot be opened.
    static ImageRGBA32Ptr LoadRAW(const std::string& path, RAWFormat format, unsigned int width,
                                  unsigned int height);
    // A square picture, its side taken from the size of the file; FileReadException when that is no square.
    static ImageRGBA32Ptr LoadRAW(const std::string& path, RAWFormat format);
    // ".raw" as a square alpha picture, everything else (PNG, BMP, JPEG, TGA) through the image library, once
    // its first bytes are plausible. Throws FileReadException.
    static ImageRGBA32Ptr LoadFile(const std::string& path);
    // What has been read of the file `path`, which is not looked at. Throws FileReadException for a fault.
    static ImageRGBA32Ptr FromPicture(Picture picture, const std::string& path);

  private:
    ImageRGBA32Ptr m_half;  // the next level, if it has been made with this one
    bool m_hasAlpha = true;
};

// One channel of floats, uploaded as alpha.
class ImageFloat : public TImage<float> {
  public:
    using TImage::TImage;

    unsigned int GetPixelFormat() const override;
    unsigned int GetPixelType() const override;
    AbstractImagePtr MakeHalf() const override;
};

// Just a size: room that the frame buffer will be copied or something drawn into, with its channels in the
// order that frame buffers have.
class BlankImage : public AbstractImage {
  public:
    BlankImage(uint32_t width, uint32_t height) : AbstractImage(width, height) {}

    const void* GetPixels() const override { return nullptr; }
    unsigned int GetPixelFormat() const override;
    unsigned int GetPixelType() const override;
    AbstractImagePtr MakeHalf() const override { return nullptr; }
};

}  // namespace rendering
