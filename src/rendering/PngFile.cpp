#include "rendering/PngFile.h"

#include <png.h>

#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/FileWrapper.h"

namespace rendering {

// Rows of an image go upward, those of the file downward: hence the negative stride.
void WritePng(const ImageRGBA32& image, const String& path) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    png.width = image.GetWidth();
    png.height = image.GetHeight();
    png.format = PNG_FORMAT_RGBA;
    const auto stride = -static_cast<png_int_32>(PNG_IMAGE_ROW_STRIDE(png));
    String bytes(PNG_IMAGE_PNG_SIZE_MAX(png), '\0');
    png_alloc_size_t size = bytes.size();
    if (!png_image_write_to_memory(&png, bytes.data(), &size, 0, image.GetPixels(), stride, nullptr)) {
        THROW(std::runtime_error, String("Cannot write \"") + path + "\": " + png.message);
    }
    bytes.resize(size);
    util::FileSystem::Instance().WriteFileAtomically(path, bytes);
}

bool IsPngOfSize(const String& path, uint32_t width, uint32_t height) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    try {
        const util::FILEWrapper file(path, "rb");
        const bool isPng = png_image_begin_read_from_stdio(&png, file.Get()) != 0;
        png_image_free(&png);
        return isPng && png.width == width && png.height == height;
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        return false;
    }
}

}  // namespace rendering
