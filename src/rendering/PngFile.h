#pragma once

#include "rendering/Image.h"
#include "util/String.h"

namespace rendering {

// Replaces the file by the picture as PNG. Throws std::runtime_error.
void WritePng(const ImageRGBA32& image, const String& path);

}  // namespace rendering
