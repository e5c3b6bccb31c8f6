#include "rendering/PngFile.h"

#include <png.h>

#include "util/Exception.h"
#include "util/FileSystem.h"

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

}  // namespace rendering
