#pragma once

#include "rendering/Image.h"
#include "util/String.h"

namespace rendering {

// Replaces the file by the picture as PNG. Throws std::runtime_error.
void WritePng(const ImageRGBA32& image, const String& path);
// Whether the file is a PNG with these sides, in pixels. Never throws.
bool IsPngOfSize(const String& path, uint32_t width, uint32_t height);

}  // namespace rendering
