#include "rendering/KeptPicture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/Texels.h"
#include "rendering/TextureManager.h"

// A picture holds the sum over its layers, C' = a C + (1 - a) C' and A' = a + (1 - a) A', so it has its
// colours multiplied by its alpha already and is laid over the frame by C' + (1 - A') F: the same as layer
// after layer over the frame F.
namespace rendering {

namespace {

constexpr int MARGIN = 1;  // pixels round the box, for what rounds outward

size_t AreaOf(math::Vec2i size) {
    return static_cast<size_t>(size.x) * static_cast<size_t>(size.y);
}

math::Vec2 ToFrame(math::Vec2 place) {
    GLfloat modelview[16], projection[16];  // by columns
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    const auto apply = [](const GLfloat* m, math::Vec2 p) {
        return math::Vec2(m[0] * p.x + m[4] * p.y + m[12], m[1] * p.x + m[5] * p.y + m[13]);
    };
    const math::Vec2 place01 = (apply(projection, apply(modelview, place)) + math::Vec2(1, 1)) * 0.5f;
    const math::Vec2i frame = Context::GetSize();
    return {place01.x * static_cast<float>(frame.x), place01.y * static_cast<float>(frame.y)};
}

}  // namespace

size_t KeptPicture::s_pixels = 0;

KeptPicture::~KeptPicture() {
    Release();
}

void KeptPicture::Forget() {
    m_isSteady = false;
    Release();
}

KeptPicture::Rect KeptPicture::GetPixels(const math::BoundingBox2f& box) {
    math::BoundingBox2f pixels;
    for (const math::Vec2 corner : {box.min, box.max, {box.min.x, box.max.y}, {box.max.x, box.min.y}}) {
        pixels.Extend(ToFrame(corner));
    }
    const math::Vec2i frame = Context::GetSize();
    const auto clamp = [](float pixel, int most) {
        return static_cast<int>(std::clamp(pixel, 0.0f, static_cast<float>(most)));
    };
    const math::Vec2i min(clamp(std::floor(pixels.min.x) - MARGIN, frame.x),
                          clamp(std::floor(pixels.min.y) - MARGIN, frame.y));
    const math::Vec2i max(clamp(std::ceil(pixels.max.x) + MARGIN, frame.x),
                          clamp(std::ceil(pixels.max.y) + MARGIN, frame.y));
    return {min, max - min};
}

// A picture has one sample a pixel. Where textures have any size, alpha can be blended by itself as well:
// both came with GL 1.4.
bool KeptPicture::CanKeep() {
    if (!HasTargets() || !HasFreeTextureSizes()) return false;
    GLint buffers = 0;
    glGetIntegerv(GL_SAMPLE_BUFFERS, &buffers);
    return buffers == 0;
}

// The first drawing after a change is recorded, and so is the next, which shows that the change is over.
void KeptPicture::Draw(const math::BoundingBox2f& box, const std::function<void()>& draw) {
    if (Recording::IsUnderWay() || !CanKeep()) return draw();
    const bool wasSteady = std::exchange(m_isSteady, false);
    if (!wasSteady) m_filled = nullptr;
    m_isSteady = m_recording.Take(wasSteady ? Recording::OnlyRecords : Recording::Draws, draw);
    if (wasSteady && !(m_isSteady && Show(GetPixels(box), draw))) draw();
}

bool KeptPicture::Show(const Rect& rect, const std::function<void()>& draw) {
    if (AreaOf(rect.m_size) == 0) return true;
    const bool isFilled = m_filled && m_place == rect.m_min && m_size == rect.m_size;
    if (!isFilled && !Fill(rect, draw)) return false;
    const ScopedAttribs attribs;
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    DrawTexels(m_filled.Get(), m_place, m_size);
    return true;
}

// Null where there is no room or no way.
TexturePtr KeptPicture::Prepare(math::Vec2i size) {
    if (size != m_size) Reserve(size);
    const TexturePtr texture = m_texture ? m_texture->Get() : nullptr;
    // For one that cannot be made the mentor gives another.
    const bool fits = texture && static_cast<int>(texture->GetWidth()) == size.x &&
                      static_cast<int>(texture->GetHeight()) == size.y;
    return fits && texture->GetFrameBuffer() != 0 ? texture : nullptr;
}

void KeptPicture::Reserve(math::Vec2i size) {
    Release();
    if (s_pixels + AreaOf(size) > MAX_FRAMES * AreaOf(Context::GetSize())) return;
    s_pixels += AreaOf(size);
    m_size = size;
    m_texture = TextureManager::Make([size] {
        const auto width = static_cast<uint32_t>(size.x), height = static_cast<uint32_t>(size.y);
        return new Texture(new BlankImage(width, height), TexelForPixel());
    });
}

void KeptPicture::Release() {
    s_pixels -= AreaOf(m_size);
    m_size = {};
    m_filled = nullptr;
    m_texture = nullptr;
}

// The picture's own place in the frame becomes the texture's lower left corner.
bool KeptPicture::Fill(const Rect& rect, const std::function<void()>& draw) {
    const TexturePtr texture = Prepare(rect.m_size);
    if (!texture) return false;
    const ScopedAttribs attribs;
    const ScopedTarget target(*texture);
    const math::Vec2i frame = Context::GetSize();
    glViewport(-rect.m_min.x, -rect.m_min.y, frame.x, frame.y);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    draw();
    m_filled = texture;
    m_place = rect.m_min;
    return true;
}

}  // namespace rendering
