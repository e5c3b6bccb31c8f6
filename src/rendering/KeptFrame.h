#pragma once

#include "rendering/Texture.h"

namespace rendering {

// The picture of a finished frame, to be shown again while nothing changes: one copy instead of all the
// drawing.
class KeptFrame {
  public:
    // What is in the frame buffer now, before it is swapped.
    void Keep();
    // Fills the frame buffer with it. False, and nothing is drawn, when there is none: never kept, forgotten,
    // of another window, or larger than the texture may be.
    bool Show();
    void Forget() { m_isKept = false; }

  private:
    TextureMentorPtr m_texture;       // null until the first frame is kept
    math::Vec2i m_size;               // that the texture was made for, pixels
    util::WeakPtr<Texture> m_filled;  // the texture of the mentor that has the picture; dies with the context
    bool m_isKept = false;
};

}  // namespace rendering
