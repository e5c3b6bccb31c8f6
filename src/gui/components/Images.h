#pragma once

#include "math/Vector.h"
#include "rendering/Texture.h"
#include "util/String.h"

// Pictures of the controls.
namespace gui {

rendering::TextureMentorPtr GetGuiImage(const String& file);        // below the toolkit's textures
math::Vec2 GetImageSize(const rendering::TextureMentorPtr& image);  // GUI units; zero for a missing one

// Upright, over the box from `min` to `max`, in the present colour.
void DrawImage(const rendering::TextureMentorPtr& image, math::Vec2 min, math::Vec2 max);

}  // namespace gui
