#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

using FileBytes = std::vector<unsigned char>;

// Files of a picture `width` by `height` whose pixel (x, y), counted from the upper left corner, has
// red 10 * x, green 10 * y, blue 200 and alpha 255 - x.
FileBytes MakePng(int width, int height);
FileBytes MakeTga(int width, int height, int bits, bool runLength);
FileBytes MakeBmp(int width, int height);

// Below the scratch folder of the test program; gives the path.
std::string WriteFile(const std::string& name, const FileBytes& bytes);

}  // namespace test
