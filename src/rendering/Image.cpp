#include "rendering/Image.h"

#include <SDL_image.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cmath>
#include <memory>
#include <vector>

#include "rendering/Gl.h"
#include "rendering/ImageFile.h"
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

// ---- files of the image library -----------------------------------------------------------------------

struct FreeSurface {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, FreeSurface>;

[[noreturn]] void ThrowLoadFailure(const std::string& path, const std::string& error) {
    THROW(FileReadException,
          "Could not load image file \"" + path + "\". SDL_image error: \"" + error + "\"");
}

// The same picture with bytes R, G, B, A.
SurfacePtr ConvertTo32Bits(const std::string& path, SDL_Surface* surface) {
    SurfacePtr converted(SDL_CreateRGBSurface(SDL_SWSURFACE, surface->w, surface->h, 32, 0x000000ff,
                                              0x0000ff00, 0x00ff0000, 0xff000000));
    if (!converted) ThrowLoadFailure(path, SDL_GetError());
    SDL_FillRect(converted.get(), nullptr, 0);
    SDL_BlitSurface(surface, nullptr, converted.get(), nullptr);
    return converted;
}

// The library's byte order differs between formats (TGA and BMP come as B, G, R); the surface tells.
RGBA32 UnpackPixel(const SDL_PixelFormat& format, const unsigned char* bytes) {
    RGBA32 pixel(bytes[0], bytes[1], bytes[2], bytes[3]);
    if (format.Rshift == 16) std::swap(pixel.x, pixel.z);
    if (format.Amask == 0) pixel.w = 255;
    return pixel;
}

ImageRGBA32Ptr CopySurface(const SDL_Surface* pic) {
    DATA_ASSERTION(pic->pitch == 4 * pic->w);
    const size_t width = static_cast<size_t>(pic->w), height = static_cast<size_t>(pic->h);
    const ImageRGBA32Ptr image =
        new ImageRGBA32(static_cast<uint32_t>(pic->w), static_cast<uint32_t>(pic->h));
    RGBA32* pixel = image->GetData().data();
    for (size_t row = height; row-- > 0;) {
        const unsigned char* bytes = static_cast<const unsigned char*>(pic->pixels) + row * width * 4;
        for (size_t x = 0; x < width; ++x, bytes += 4) *pixel++ = UnpackPixel(*pic->format, bytes);
    }
    return image;
}

// ---- halves -------------------------------------------------------------------------------------------

math::Vec4 Widen(const RGBA32& pixel) {
    return {static_cast<float>(pixel.x), static_cast<float>(pixel.y), static_cast<float>(pixel.z),
            static_cast<float>(pixel.w)};
}
float Widen(float value) {
    return value;
}

void Narrow(const math::Vec4& sum, RGBA32& pixel) {
    const auto round = [](float value) {
        return static_cast<unsigned char>(value + 0.5f);
    };  // NOLINT(bugprone-*)
    pixel = {round(sum.x), round(sum.y), round(sum.z), round(sum.w)};
}
void Narrow(float sum, float& value) {
    value = sum;
}

// What texel i of a half covers along one axis: so much of each of the texels from 2 i on. Of an even length
// these are two. Of an odd one, 2 n + 1, each covers 2 + 1 / n, and neighbours share the texel between them.
struct Cover {
    uint32_t count;
    float parts[3];
};

Cover GetCover(uint32_t length, uint32_t i) {
    if (length == 1) return {1, {1}};
    if (length % 2 == 0) return {2, {0.5f, 0.5f}};
    const auto n = static_cast<float>(length / 2), whole = static_cast<float>(length);
    return {3, {(n - static_cast<float>(i)) / whole, n / whole, (static_cast<float>(i) + 1) / whole}};
}

template <class Image>
AbstractImagePtr MakeHalfOf(const Image& image) {
    const uint32_t width = image.GetWidth(), height = image.GetHeight();
    if (width <= 1 && height <= 1) return nullptr;
    const uint32_t halfWidth = std::max(width / 2, 1u), halfHeight = std::max(height / 2, 1u);
    const util::SharedPtr<Image> half = new Image(halfWidth, halfHeight);
    auto* target = half->GetData().data();
    for (uint32_t y = 0; y < halfHeight; ++y) {
        const Cover rows = GetCover(height, y);
        for (uint32_t x = 0; x < halfWidth; ++x) {
            const Cover columns = GetCover(width, x);
            decltype(Widen(*target)) sum{};
            for (uint32_t row = 0; row < rows.count; ++row) {
                const auto* source = image.GetData().data() + (2 * y + row) * width + 2 * x;
                for (uint32_t column = 0; column < columns.count; ++column) {
                    sum = sum + Widen(source[column]) * (rows.parts[row] * columns.parts[column]);
                }
            }
            Narrow(sum, *target++);
        }
    }
    return half;
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
    return MakeHalfOf(*this);
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
    const std::string fault = FindImageFault(path);
    if (!fault.empty()) ThrowLoadFailure(path, fault);
    SurfacePtr surface(IMG_Load(path.c_str()));
    if (!surface) ThrowLoadFailure(path, IMG_GetError());
    const int depth = surface->format->BitsPerPixel;
    if (depth != 32) surface = ConvertTo32Bits(path, surface.get());
    const ImageRGBA32Ptr image = CopySurface(surface.get());
    image->SetName(path);
    image->SetHasAlpha(depth == 32 || depth == 8);
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
    return MakeHalfOf(*this);
}

unsigned int BlankImage::GetPixelFormat() const {
    return GL_BGRA;
}
unsigned int BlankImage::GetPixelType() const {
    return GL_UNSIGNED_BYTE;
}

}  // namespace rendering
