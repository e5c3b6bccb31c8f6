#pragma once

#include "math/BoundingBox.h"
#include "rendering/Recording.h"
#include "rendering/Texture.h"

namespace rendering {

// The picture of a part of the interface, a window for instance: shown in place of drawing it while that
// would give the same, pixel for pixel, half-transparent as it is. Whether it would is asked of the drawing
// itself each time (Recording), so nobody has to say when something has changed.
//
// What changes from frame to frame is drawn as if there were no picture; and so is everything where textures
// cannot be drawn into, where the frame is smoothed, and where pictures already take up as much as
// MAX_FRAMES whole frames would.
class KeptPicture {
  public:
    KeptPicture() = default;
    ~KeptPicture();
    KeptPicture(const KeptPicture&) = delete;
    KeptPicture& operator=(const KeptPicture&) = delete;

    // `draw` stays within `box`, in the coordinates in force, blends its colours over what is there and
    // leaves no trace but pixels.
    void Draw(const math::BoundingBox2f& box, const std::function<void()>& draw);
    void Forget();  // and the texture with it

    static constexpr size_t MAX_FRAMES = 2;
    static size_t CountPixels() { return s_pixels; }  // of all pictures together

  private:
    struct Rect {  // pixels of the frame, from the lower left
        math::Vec2i m_min;
        math::Vec2i m_size;
    };
    static Rect GetPixels(const math::BoundingBox2f& box);
    static bool CanKeep();
    bool Show(const Rect& rect, const std::function<void()>& draw);
    bool Fill(const Rect& rect, const std::function<void()>& draw);
    TexturePtr Prepare(math::Vec2i size);
    void Reserve(math::Vec2i size);
    void Release();

    Recording m_recording;
    bool m_isSteady = false;          // the last two takes were equal
    TextureMentorPtr m_texture;       // null until there is a picture
    math::Vec2i m_size;               // of m_texture, pixels
    math::Vec2i m_place;              // of the picture in the frame
    util::WeakPtr<Texture> m_filled;  // the mentor's texture with the picture in it; dies with the context

    static size_t s_pixels;
};

}  // namespace rendering
