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

constexpr uint32_t FRAME_TEXTURE_SIDE = 2048;  // texels
constexpr float SPRITE_SIDE = 8;               // particle radii

void ClearToBlack() {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

// A maximum below 1 makes the bounds change places.
float Stretch(float speed, const WaterView& view) {
    const float least = std::min(1.0f, view.maxElongation), most = std::max(1.0f, view.maxElongation);
    return std::clamp(speed * view.elongation + 1, least, most);
}

}  // namespace

rendering::TextureMentorPtr MakeFrameTexture() {
    return TextureManager::Make([] {
        return new Texture(new rendering::BlankImage(FRAME_TEXTURE_SIDE, FRAME_TEXTURE_SIDE),
                           Texture::ImageType::Frame());
    });
}

void DrawFrameQuad(Vec2 size, float guiScale) {
    constexpr int SIDE = FRAME_TEXTURE_SIDE;
    const math::Vec2i frame = rendering::Context::GetSize();
    const float width = static_cast<float>(std::min(frame.x, SIDE));
    const float height = static_cast<float>(std::min(frame.y, SIDE));
    const Vec2 texCoord = Vec2(width, height) / static_cast<float>(SIDE);
    Renderer::Instance().DrawQuad({0, size.y - height / guiScale}, {width / guiScale, size.y},
                                  {0, texCoord.y}, {texCoord.x, 0});
}

WaterPainter::WaterPainter(const script::AttribPtr<float>& fanceyFactor)
    : m_metaBallTexture(TextureManager::Make([fanceyFactor] {
          return TextureFromImage(MakeMetaBallImage(fanceyFactor->Get()), Texture::ImageType::Sprite());
      })),
      m_waterTexture(TextureManager::Instance().Get("water")),
      m_waterShader(rendering::ShaderManager::Instance().Get("water")),
      m_cutoff(new rendering::Uniform(m_waterShader, "Cutoff")),
      m_color(new rendering::Uniform(m_waterShader, "Color")) {}

// ---- the field -------------------------------------------------------------------------------------------

void WaterPainter::DrawField(const physics::ParticleList& particles, const WaterView& view) {
    PROFILE_SECTION("DrawMetaTex");
    if (!m_metaTexture) m_metaTexture = MakeFrameTexture();
    const rendering::TexturePtr field = m_metaTexture->Get(), sprite = m_metaBallTexture->Get();
    if (!field || !sprite) return;
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedAttribs attribs;
    ClearToBlack();
    Renderer::Instance().SetColor({1, 1, 1, 1});
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    Renderer::Instance().MultMatrix(view.worldToGUI);
    {
        PROFILE_SECTION("Drawing particles");
        CollectSprites(particles, view);
        const rendering::ScopedTexture bound(sprite);
        m_sprites.DrawAndClear();
    }
    field->Copy(FRAME_TEXTURE_SIDE, FRAME_TEXTURE_SIDE);
    ClearToBlack();
}

void WaterPainter::CollectSprites(const physics::ParticleList& particles, const WaterView& view) {
    const float half = view.radius * SPRITE_SIDE / 2;
    math::BoundingBox2f box = view.box;
    // The square is no distance; how water behaves at the edge of the screen has been tuned with it.
    box.Grow(half * view.maxElongation * (half * view.maxElongation));
    for (const physics::ParticlePtr& particle : particles) {
        const Vec2 position = particle->m_pos, velocity = particle->m_vel;
        if (!box.Contains(position)) continue;
        const float speed = math::Length(velocity);
        const Vec2 heading = speed > 0 ? velocity / speed : Vec2(1, 0);
        const float stretch = Stretch(speed, view);
        m_sprites.AddSprite(position, heading * (half * stretch),
                            math::Perpendicular(heading) * (half / stretch));
    }
}

// ---- the surface -----------------------------------------------------------------------------------------

void WaterPainter::DrawSurface(const WaterView& view) {
    if (!m_metaTexture || !m_metaTexture->Get()) return;
    const rendering::ScopedTexture field(m_metaTexture->Get());
    if (rendering::Context::UseShaders() && m_waterShader->Get()) {
        DrawSurfaceByShader(view);
    } else {
        DrawSurfaceByAlphaTest(view);
    }
}

void WaterPainter::DrawSurfaceByShader(const WaterView& view) {
    const rendering::ScopedShader shader(*m_waterShader->Get());
    m_cutoff->Set(view.cutoff);
    m_color->Set(view.color);
    DrawFrameQuad(view.size, view.guiScale);
}

// The hard cut is the look of this path: opaque where the field, dimmed by the colour's alpha, passes.
void WaterPainter::DrawSurfaceByAlphaTest(const WaterView& view) {
    const rendering::ScopedColor color(view.color);
    const rendering::ScopedCapability noBlending(GL_BLEND, false);
    const rendering::ScopedCapability alphaTest(GL_ALPHA_TEST, true);
    glAlphaFunc(GL_GREATER, view.cutoff);
    DrawFrameQuad(view.size, view.guiScale);
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
