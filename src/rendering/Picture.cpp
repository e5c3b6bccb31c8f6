#include "rendering/Picture.h"

#include <SDL_image.h>

#include <algorithm>
#include <memory>
#include <mutex>

#include "rendering/ImageFile.h"

namespace rendering {

namespace {

// ---- files of the image library -----------------------------------------------------------------------

struct FreeSurface {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, FreeSurface>;

// The same picture with bytes R, G, B, A; null on failure.
SurfacePtr ConvertTo32Bits(SDL_Surface* surface) {
    SurfacePtr converted(SDL_CreateRGBSurface(SDL_SWSURFACE, surface->w, surface->h, 32, 0x000000ff,
                                              0x0000ff00, 0x00ff0000, 0xff000000));
    if (!converted) return nullptr;
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

Pixels<RGBA32> CopySurface(const SDL_Surface& surface) {
    const size_t width = static_cast<size_t>(surface.w), height = static_cast<size_t>(surface.h);
    Pixels<RGBA32> pixels(width, height);
    RGBA32* pixel = pixels.GetData().data();
    for (size_t row = height; row-- > 0;) {
        const unsigned char* bytes = static_cast<const unsigned char*>(surface.pixels) + row * surface.pitch;
        for (size_t x = 0; x < width; ++x, bytes += 4) *pixel++ = UnpackPixel(*surface.format, bytes);
    }
    return pixels;
}

// The library makes itself ready at its first call, which must not be two at once.
std::mutex& GetLibraryMutex() {
    static std::mutex& s_mutex = *new std::mutex;  // abandoned at exit
    return s_mutex;
}

void ReadByLibrary(const std::string& path, Picture& picture) {
    const std::lock_guard<std::mutex> lock(GetLibraryMutex());
    SurfacePtr surface(IMG_Load(path.c_str()));
    const int depth = surface ? surface->format->BitsPerPixel : 32;
    if (depth != 32) surface = ConvertTo32Bits(surface.get());
    if (!surface) {
        picture.fault = SDL_GetError();
        return;
    }
    picture.pixels = CopySurface(*surface);
    picture.hasAlpha = depth == 32 || depth == 8;
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
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): never negative, and lround takes several times as long
    const auto round = [](float value) { return static_cast<unsigned char>(value + 0.5f); };
    pixel = {round(sum.x), round(sum.y), round(sum.z), round(sum.w)};
}
void Narrow(float sum, float& value) {
    value = sum;
}

// What texel i of a half covers along one axis: so much of each of the texels from 2 i on. Of an even length
// these are two. Of an odd one, 2 n + 1, each covers 2 + 1 / n, and neighbours share the texel between them.
struct Cover {
    size_t count;
    float parts[3];
};

Cover GetCover(size_t length, size_t i) {
    if (length == 1) return {1, {1}};
    if (length % 2 == 0) return {2, {0.5f, 0.5f}};
    const auto n = static_cast<float>(length / 2), whole = static_cast<float>(length);
    return {3, {(n - static_cast<float>(i)) / whole, n / whole, (static_cast<float>(i) + 1) / whole}};
}

}  // namespace

template <class T>
Pixels<T> HalfOf(const Pixels<T>& whole) {
    const size_t width = whole.GetWidth(), height = whole.GetHeight();
    if (width <= 1 && height <= 1) return {};
    Pixels<T> half(std::max<size_t>(width / 2, 1), std::max<size_t>(height / 2, 1));
    T* target = half.GetData().data();
    for (size_t y = 0; y < half.GetHeight(); ++y) {
        const Cover rows = GetCover(height, y);
        for (size_t x = 0; x < half.GetWidth(); ++x) {
            const Cover columns = GetCover(width, x);
            decltype(Widen(*target)) sum{};
            for (size_t row = 0; row < rows.count; ++row) {
                const T* const source = whole.GetData().data() + (2 * y + row) * width + 2 * x;
                for (size_t column = 0; column < columns.count; ++column) {
                    sum = sum + Widen(source[column]) * (rows.parts[row] * columns.parts[column]);
                }
            }
            Narrow(sum, *target++);
        }
    }
    return half;
}

template Pixels<RGBA32> HalfOf(const Pixels<RGBA32>& whole);
template Pixels<float> HalfOf(const Pixels<float>& whole);

Picture ReadPicture(const std::string& path, bool withHalves) {
    Picture picture;
    picture.fault = FindImageFault(path);
    if (picture.fault.empty()) ReadByLibrary(path, picture);
    if (!picture.fault.empty() || !withHalves) return picture;
    for (Pixels<RGBA32> half = HalfOf(picture.pixels); half.GetWidth() > 0; half = HalfOf(half)) {
        picture.halves.push_back(half);
    }
    return picture;
}

}  // namespace rendering
