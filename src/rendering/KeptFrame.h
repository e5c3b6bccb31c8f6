#pragma once

#include <functional>

#include "rendering/Texture.h"

namespace rendering {

// The picture of a finished frame, to be shown again while nothing changes: one copy instead of all the
// drawing.
class KeptFrame {
  public:
    // Fills the frame buffer by `draw` and keeps the picture.
    void Draw(const std::function<void()>& draw);
    // Fills the frame buffer with it. False, and nothing is drawn, when there is none: never kept, forgotten,
    // of another window, or larger than the texture may be.
    bool Show();
    void Forget() { m_isKept = false; }

  private:
    TexturePtr Prepare();
    void Adopt(const TexturePtr& texture);

    TextureMentorPtr m_texture;       // null until the first frame is kept
    math::Vec2i m_size;               // of the picture, pixels
    util::WeakPtr<Texture> m_filled;  // the texture of the mentor that has the picture; dies with the context
    bool m_isKept = false;
};

}  // namespace rendering
