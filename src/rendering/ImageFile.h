#pragma once

#include <string>

namespace rendering {

// The image library ends the program on some damaged files; so a file is looked at before it gets there.
// Returns what is wrong with it, empty for a file that may be handed on: a PNG, BMP or JPEG by its magic, or,
// for the extension ".tga", a plausible TGA header; all with sides from 1 to 8192, all parts within the
// file, PNG chunks with right checksums.
std::string FindImageFault(const std::string& path);

}  // namespace rendering
