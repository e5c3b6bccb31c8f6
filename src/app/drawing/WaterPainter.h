#pragma once

#include "math/BoundingBox.h"
#include "math/Matrix3.h"
#include "math/Vector.h"
#include "physics/Fwd.h"
#include "rendering/Shader.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"
#include "script/Attributes.h"
#include "util/Pointee.h"

namespace app {

// What one frame's water is drawn with.
struct WaterView {
    math::TMatrix3<float> worldToGUI;
    math::BoundingBox2f box;  // the visible part of the world
    math::Vec2 size;          // of the component, GUI units
    float guiScale = 1;       // pixels per GUI unit
    float radius = 0.05f;     // of a particle, m
    float elongation = 0;     // stretch per speed, s/m
    float maxElongation = 1;
    float cutoff = 0.5f;  // of the field at the surface
    math::Vec4 color;
};

// A part of the frame, in pixels from its lower left corner; empty unless max is greater in both.
struct FrameRegion {
    math::Vec2i min, max;
    bool IsEmpty() const { return max.x <= min.x || max.y <= min.y; }
};

FrameRegion GetWholeFrame(const rendering::Texture& texture);  // or what the texture covers of it
// A region of a texture of the frame at its place in the frame. `size` of the frame in GUI units, y down.
void DrawFrameQuad(const rendering::Texture& texture, const FrameRegion& region, math::Vec2 size,
                   float guiScale);

// Draws the particles as one smooth body of water: metaballs in screen space (after J. Blinn, ACM TOG 1,
// 1982). Each particle adds a soft sprite to the field; where the sum exceeds a threshold there is water.
// The field comes before anything else of the frame, so that the frame buffer can be its scratch paper where
// textures cannot be drawn into.
class WaterPainter : public util::Pointee {
  public:
    explicit WaterPainter(const script::AttribPtr<float>& fanceyFactor);

    // Adds up the field in a texture, or where that cannot be drawn into in the frame buffer, from which it
    // is copied and which is left black.
    void DrawField(const physics::ParticleList& particles, const WaterView& view);
    // Over what is there: with the shader, or by a texture unit.
    void DrawSurface(const WaterView& view);
    // The plain way: one soft disc for each particle.
    void DrawDiscs(const physics::ParticleList& particles, const WaterView& view);

  private:
    void SumUp(const rendering::Texture& sprite, const WaterView& view);
    // Fills m_sprites and m_region, within `frame`.
    void CollectSprites(const physics::ParticleList& particles, const WaterView& view,
                        const FrameRegion& frame);
    void DrawSurfaceByShader(const rendering::Texture& field, const WaterView& view);
    void DrawSurfaceByUnit(const rendering::Texture& field, const WaterView& view);

    rendering::TextureMentorPtr m_metaTexture;      // the field; made with the first water
    rendering::TextureMentorPtr m_metaBallTexture;  // one drop's field
    rendering::TextureMentorPtr m_waterTexture;     // a soft disc
    rendering::ShaderMentorPtr m_waterShader;
    rendering::UniformPtr m_cutoff;
    rendering::UniformPtr m_color;
    rendering::VertexBatch m_sprites;  // of this frame
    FrameRegion m_region;              // where they are
};

}  // namespace app
