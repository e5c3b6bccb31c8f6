#include "rendering/Image.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cmath>
#include <vector>

#include "rendering/Gl.h"
#include "util/Exception.h"
#include "util/FileWrapper.h"

namespace rendering {

namespace {

constexpr RGBA32 WHITE{255, 255, 255, 255};
constexpr unsigned int MAX_SIDE = 8192;  // of a square file of bare pixels

// ---- files of bare pixels -----------------------------------------------------------------------------

size_t BytesPerPixel(ImageRGBA32::RAWFormat format) {
    switch (format) {
        case ImageRGBA32::RAW_ALPHA:
            return 1;
        case ImageRGBA32::RAW_RGB:
            return 3;
        default:
            return 4;
    }
}

RGBA32 UnpackPixel(ImageRGBA32::RAWFormat format, const unsigned char* bytes) {
    RGBA32 pixel = WHITE;
    if (format == ImageRGBA32::RAW_ALPHA) {
        pixel.w = bytes[0];
        return pixel;
    }
    pixel.x = bytes[0];
    pixel.y = bytes[1];
    pixel.z = bytes[2];
    if (format == ImageRGBA32::RAW_RGBA) pixel.w = bytes[3];
    return pixel;
}

void FlipRows(RGBA32* pixels, size_t width, size_t height) {
    for (size_t low = 0, high = height; low + 1 < high; ++low) {
        --high;
        std::swap_ranges(pixels + low * width, pixels + (low + 1) * width, pixels + high * width);
    }
}

// ---- halves -------------------------------------------------------------------------------------------

template <class Image, class T>
util::SharedPtr<Image> MakeImage(Pixels<T> pixels) {
    if (pixels.GetWidth() == 0) return nullptr;
    return new Image(std::move(pixels));
}

}  // namespace

// ---- ImageRGBA32 --------------------------------------------------------------------------------------

unsigned int ImageRGBA32::GetPixelFormat() const {
    return GL_RGBA;
}
unsigned int ImageRGBA32::GetPixelType() const {
    return GL_UNSIGNED_BYTE;
}
AbstractImagePtr ImageRGBA32::MakeHalf() const {
    if (m_half) return m_half;
    return MakeImage<ImageRGBA32>(HalfOf<RGBA32>(*this));
}

ImageRGBA32Ptr ImageRGBA32::LoadRAW(const std::string& path, RAWFormat format, unsigned int width,
                                    unsigned int height) {
    const ImageRGBA32Ptr image = new ImageRGBA32(width, height, WHITE);
    image->SetName(path);
    image->SetHasAlpha(format != RAW_RGB);
    util::FILEWrapper file(path, "rb");
    const size_t pixelSize = BytesPerPixel(format);
    std::vector<unsigned char> bytes(image->GetData().size() * pixelSize);
    if (std::fread(bytes.data(), 1, bytes.size(), file.Get()) != bytes.size()) {
        THROW(FileReadException, "File \"" + path + "\" is corrupt.");
    }
    const unsigned char* source = bytes.data();
    for (RGBA32& pixel : image->GetData()) {
        pixel = UnpackPixel(format, source);
        source += pixelSize;
    }
    FlipRows(image->GetData().data(), width, height);
    return image;
}

ImageRGBA32Ptr ImageRGBA32::LoadRAW(const std::string& path, RAWFormat format) {
    long size = 0;
    {
        util::FILEWrapper file(path, "rb");
        file.Seek(0, SEEK_END);
        size = std::ftell(file.Get());
    }
    const long nPixels = size / static_cast<long>(BytesPerPixel(format));
    const long side = std::lround(std::sqrt(static_cast<double>(nPixels)));
    const bool isSquare = side * side * static_cast<long>(BytesPerPixel(format)) == size;
    if (!isSquare || side < 1 || side > static_cast<long>(MAX_SIDE)) {
        THROW(FileReadException, "The RAW-file \"" + path + "\" contained a non quadratic picture.");
    }
    return LoadRAW(path, format, static_cast<unsigned int>(side), static_cast<unsigned int>(side));
}

ImageRGBA32Ptr ImageRGBA32::LoadFile(const std::string& path) {
    if (boost::algorithm::ends_with(path, ".raw")) return LoadRAW(path, RAW_ALPHA);
    return FromPicture(ReadPicture(path), path);
}

ImageRGBA32Ptr ImageRGBA32::FromPicture(Picture picture, const std::string& path) {
    if (!picture.fault.empty()) {
        THROW(FileReadException,
              "Could not load image file \"" + path + "\". SDL_image error: \"" + picture.fault + "\"");
    }
    const ImageRGBA32Ptr image = new ImageRGBA32(std::move(picture.pixels));
    image->SetName(path);
    image->SetHasAlpha(picture.hasAlpha);
    ImageRGBA32Ptr last = image;
    for (Pixels<RGBA32>& half : picture.halves) {
        last->m_half = new ImageRGBA32(std::move(half));
        last = last->m_half;
    }
    return image;
}

// ---- ImageFloat, BlankImage ---------------------------------------------------------------------------

unsigned int ImageFloat::GetPixelFormat() const {
    return GL_ALPHA;
}
unsigned int ImageFloat::GetPixelType() const {
    return GL_FLOAT;
}
AbstractImagePtr ImageFloat::MakeHalf() const {
    return MakeImage<ImageFloat>(HalfOf<float>(*this));
}

unsigned int BlankImage::GetPixelFormat() const {
    return GL_BGRA;
}
unsigned int BlankImage::GetPixelType() const {
    return GL_UNSIGNED_BYTE;
}

}  // namespace rendering
