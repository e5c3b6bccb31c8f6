#include "app/drawing/WaterPainter.h"

#include <algorithm>
#include <cmath>

#include "app/drawing/MetaBall.h"
#include "physics/Particle.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"
#include "util/ProfileTree.h"

namespace app {

using math::Vec2;
using rendering::Renderer;
using rendering::Texture;
using rendering::TextureManager;

namespace {

constexpr float SPRITE_SIDE = 8;  // particle radii

// Without shaders; the shader has a colour of its own.
constexpr math::Vec4 RIM_COLOR{0.88f, 0.96f, 1, 1};
constexpr float RIM_SHARE = 0.45f;  // of the field's range above the cutoff
constexpr float CUT_GAIN = 4;       // the greatest scale of a texture unit

// For a scope the texture unit makes the present colour opaque where the texture's alpha is above `cutoff`,
// with an edge as soft as a slope of CUT_GAIN.
class ScopedCut {
  public:
    explicit ScopedCut(float cutoff) {
        const GLfloat constant[4] = {0, 0, 0, cutoff};
        glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, constant);
        Set(GL_TEXTURE_ENV_MODE, GL_COMBINE);
        Set(GL_COMBINE_RGB, GL_REPLACE);
        Set(GL_SOURCE0_RGB, GL_PRIMARY_COLOR);
        Set(GL_OPERAND0_RGB, GL_SRC_COLOR);
        Set(GL_COMBINE_ALPHA, GL_SUBTRACT);
        Set(GL_SOURCE0_ALPHA, GL_TEXTURE);
        Set(GL_OPERAND0_ALPHA, GL_SRC_ALPHA);
        Set(GL_SOURCE1_ALPHA, GL_CONSTANT);
        Set(GL_OPERAND1_ALPHA, GL_SRC_ALPHA);
        SetGains(CUT_GAIN);
    }
    ~ScopedCut() {
        SetGains(1);
        Set(GL_TEXTURE_ENV_MODE, GL_MODULATE);
    }
    ScopedCut(const ScopedCut&) = delete;
    ScopedCut& operator=(const ScopedCut&) = delete;

  private:
    static void Set(GLenum name, GLint value) { glTexEnvi(GL_TEXTURE_ENV, name, value); }
    static void SetGains(float alpha) {
        glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, 1);
        glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, alpha);
    }
};

void ClearToBlack() {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
}

// The pixels of the frame that a box of the world covers, rounded outward.
FrameRegion GetRegion(const math::BoundingBox2f& box, const WaterView& view, const FrameRegion& frame) {
    if (!box.IsFinite()) return {};
    const Vec2 a = view.worldToGUI(box.min), b = view.worldToGUI(box.max);
    const auto toPixel = [&view](float gui, int limit) {
        return static_cast<int>(std::clamp(gui * view.guiScale, 0.0f, static_cast<float>(limit)));
    };
    return {{toPixel(std::min(a.x, b.x) - 1, frame.max.x),
             toPixel(view.size.y - std::max(a.y, b.y) - 1, frame.max.y)},
            {toPixel(std::max(a.x, b.x) + 2, frame.max.x),
             toPixel(view.size.y - std::min(a.y, b.y) + 2, frame.max.y)}};
}

// A maximum below 1 makes the bounds change places.
float Stretch(float speed, const WaterView& view) {
    const float least = std::min(1.0f, view.maxElongation), most = std::max(1.0f, view.maxElongation);
    return std::clamp(speed * view.elongation + 1, least, most);
}

}  // namespace

FrameRegion GetWholeFrame(const Texture& texture) {
    const math::Vec2i frame = rendering::Context::GetSize();
    return {{0, 0},
            {std::min(frame.x, static_cast<int>(texture.GetWidth())),
             std::min(frame.y, static_cast<int>(texture.GetHeight()))}};
}

void DrawFrameQuad(const Texture& texture, const FrameRegion& region, Vec2 size, float guiScale) {
    const Vec2 min(static_cast<float>(region.min.x), static_cast<float>(region.min.y));
    const Vec2 max(static_cast<float>(region.max.x), static_cast<float>(region.max.y));
    const Vec2 texels(static_cast<float>(texture.GetWidth()), static_cast<float>(texture.GetHeight()));
    Renderer::Instance().DrawQuad({min.x / guiScale, size.y - max.y / guiScale},
                                  {max.x / guiScale, size.y - min.y / guiScale},
                                  {min.x / texels.x, max.y / texels.y}, {max.x / texels.x, min.y / texels.y});
}

WaterPainter::WaterPainter(const script::AttribPtr<float>& fanceyFactor)
    : m_metaBallTexture(TextureManager::Make([fanceyFactor] {
          return TextureFromImage(MakeMetaBallImage(fanceyFactor->Get()), Texture::ImageType::Smooth());
      })),
      m_waterTexture(TextureManager::Instance().Get("water")),
      m_waterShader(rendering::ShaderManager::Instance().Get("water")),
      m_cutoff(new rendering::Uniform(m_waterShader, "Cutoff")),
      m_color(new rendering::Uniform(m_waterShader, "Color")) {}

// ---- the field -------------------------------------------------------------------------------------------

void WaterPainter::DrawField(const physics::ParticleList& particles, const WaterView& view) {
    PROFILE_SECTION("DrawMetaTex");
    if (!m_metaTexture) m_metaTexture = TextureManager::MakeForFrame(Texture::ImageType::Frame());
    const rendering::TexturePtr field = m_metaTexture->Get(), sprite = m_metaBallTexture->Get();
    if (!field || !sprite) return;
    CollectSprites(particles, view, GetWholeFrame(*field));
    if (m_region.IsEmpty()) return m_sprites.Clear();
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedAttribs attribs;
    if (field->GetFrameBuffer() != 0) {
        const rendering::ScopedTarget target(*field);
        SumUp(*sprite, view);
    } else {
        glEnable(GL_SCISSOR_TEST);
        glScissor(m_region.min.x, m_region.min.y, m_region.max.x - m_region.min.x,
                  m_region.max.y - m_region.min.y);
        SumUp(*sprite, view);
        field->Copy(m_region.min, m_region.max);
        ClearToBlack();
    }
}

// Into black.
void WaterPainter::SumUp(const Texture& sprite, const WaterView& view) {
    PROFILE_SECTION("Drawing particles");
    ClearToBlack();
    Renderer::Instance().SetColor({1, 1, 1, 1});
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    Renderer::Instance().MultMatrix(view.worldToGUI);
    sprite.Bind();
    m_sprites.DrawAndClear();
    sprite.Unbind();
}

void WaterPainter::CollectSprites(const physics::ParticleList& particles, const WaterView& view,
                                  const FrameRegion& frame) {
    const float half = view.radius * SPRITE_SIDE / 2;
    math::BoundingBox2f box = view.box;
    // The square is no distance; how water behaves at the edge of the screen has been tuned with it.
    box.Grow(half * view.maxElongation * (half * view.maxElongation));
    math::BoundingBox2f drops;
    for (const physics::ParticlePtr& particle : particles) {
        const Vec2 position = particle->m_pos, velocity = particle->m_vel;
        if (!box.Contains(position)) continue;
        drops.Extend(position);
        const float speed = math::Length(velocity);
        const Vec2 heading = speed > 0 ? velocity / speed : Vec2(1, 0);
        const float stretch = Stretch(speed, view);
        m_sprites.AddRoundSprite(position, heading * (half * stretch),
                                 math::Perpendicular(heading) * (half / stretch));
    }
    if (!m_sprites.IsEmpty()) drops.Grow(half * std::max(1.0f, view.maxElongation));
    m_region = GetRegion(drops, view, frame);
}

// ---- the surface -----------------------------------------------------------------------------------------

void WaterPainter::DrawSurface(const WaterView& view) {
    if (m_region.IsEmpty() || !m_metaTexture || !m_metaTexture->Get()) return;
    const rendering::TexturePtr field = m_metaTexture->Get();
    const rendering::ScopedTexture bound(field);
    if (rendering::Context::UseShaders() && m_waterShader->Get()) {
        DrawSurfaceByShader(*field, view);
    } else {
        DrawSurfaceByUnit(*field, view);
    }
}

void WaterPainter::DrawSurfaceByShader(const Texture& field, const WaterView& view) {
    const rendering::ScopedShader shader(*m_waterShader->Get());
    m_cutoff->Set(view.cutoff);
    m_color->Set(view.color);
    DrawFrameQuad(field, m_region, view.size, view.guiScale);
}

// Two layers in plain colours, opaque but for their edges: the rim, and from a higher field on the water.
void WaterPainter::DrawSurfaceByUnit(const Texture& field, const WaterView& view) {
    {
        const ScopedCut cut(view.cutoff);
        const rendering::ScopedColor rim(RIM_COLOR);
        DrawFrameQuad(field, m_region, view.size, view.guiScale);
    }
    const ScopedCut cut(view.cutoff + (1 - view.cutoff) * RIM_SHARE);
    const rendering::ScopedColor inner(math::Vec4(view.color.x, view.color.y, view.color.z, 1));
    DrawFrameQuad(field, m_region, view.size, view.guiScale);
}

void WaterPainter::DrawDiscs(const physics::ParticleList& particles, const WaterView& view) {
    const rendering::TexturePtr disc = m_waterTexture->Get();
    if (!disc) return;
    const float half = 2 * view.radius;
    math::BoundingBox2f box = view.box;
    box.Grow(half);
    for (const physics::ParticlePtr& particle : particles) {
        if (box.Contains(particle->m_pos)) m_sprites.AddSprite(particle->m_pos, {half, 0}, {0, half});
    }
    const rendering::ScopedColor color(view.color);
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedTexture bound(disc);
    Renderer::Instance().MultMatrix(view.worldToGUI);
    m_sprites.DrawAndClear();
}

}  // namespace app
