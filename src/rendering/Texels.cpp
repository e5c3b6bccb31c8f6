#include "rendering/Texels.h"

#include <optional>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"

namespace rendering {

namespace {

math::Vec2 Divide(math::Vec2i a, math::Vec2i b) {
    return {static_cast<float>(a.x) / static_cast<float>(b.x),
            static_cast<float>(a.y) / static_cast<float>(b.y)};
}

// The identity on both stacks for the length of a scope: x and y from -1 to 1 span the frame.
class ScopedFrameUnits {
  public:
    ScopedFrameUnits() {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
    }
    ~ScopedFrameUnits() {
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
    ScopedFrameUnits(const ScopedFrameUnits&) = delete;
    ScopedFrameUnits& operator=(const ScopedFrameUnits&) = delete;
};

}  // namespace

Texture::ImageType TexelForPixel() {
    return {GL_RGBA, 0, 1, 1, 0, 0, 0};
}

// The fixed function divides the texture coordinates by their fourth, for which a software driver works on
// each pixel by itself; the program reads them as they are, and rectangles are copied in rows.
void DrawTexels(const TexturePtr& texture, math::Vec2i place, math::Vec2i size) {
    const ScopedAttribs attribs;
    const ScopedFrameUnits units;
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    Renderer::Instance().SetColor({1, 1, 1, 1});
    const ScopedTexture bound(texture);
    std::optional<ScopedShader> program;
    if (const ShaderPtr shader = ShaderManager::Instance().Get("picture")->Get()) program.emplace(*shader);
    const math::Vec2 one(1, 1), min = Divide(place, Context::GetSize()) * 2.0f - one;
    const math::Vec2 max = Divide(place + size, Context::GetSize()) * 2.0f - one;
    const math::Vec2i whole(static_cast<int>(texture->GetWidth()), static_cast<int>(texture->GetHeight()));
    Renderer::Instance().DrawQuad(min, max, {0, 0}, Divide(size, whole));
}

}  // namespace rendering
