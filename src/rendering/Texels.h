#pragma once

#include "rendering/Texture.h"

namespace rendering {

// The way of sampling of what is drawn texel for pixel.
Texture::ImageType TexelForPixel();

// Lays the lower left part of a texture, `size` large, over the frame with its lower left corner at `place`;
// both in pixels. Blends as set.
void DrawTexels(const TexturePtr& texture, math::Vec2i place, math::Vec2i size);

}  // namespace rendering
