#pragma once

#include "math/BoundingBox.h"
#include "math/OBB2D.h"
#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "rendering/Shader.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"
#include "util/Singleton.h"

namespace rendering {

struct PlaneOutline;

// What all shapes of a frame have in common. Lengths in world units.
struct ShapeView {
    math::BoundingBox2f box;  // the visible part of the world
    float pixelSize = 1;      // side of a pixel on the screen
    float borderWidth = 0;    // of the rim; shapes too small for it get a thinner one
    bool borders = true;      // whether rims are drawn
};

// The look of shapes: a fill, a darker rim of constant width on the screen, a smooth outline.
//
// With shaders one quad each, whose pixels take their distance from the outline from a distance texture or
// compute it. Without: polygons by the texture units (rendering::DistanceCombiner), or where there are too
// few of them by two alpha tests; circles by plain discs, drawn many at a time; planes by bands of vertex
// colours along their edge.
//
// The modelview matrix is that of the world. Blending by the source's alpha and GL_TEXTURE_2D are on before
// and after each call. Colours multiply with the renderer's.
class ShapePainter : public util::Pointee, public util::Singleton<ShapePainter> {
  public:
    ShapePainter();

    void SetView(const ShapeView& view);
    const ShapeView& GetView() const { return m_view; }

    // Without shaders circles wait to be drawn together, until another shape comes or Flush.
    void DrawCircle(const math::RigidTransform& transform, float radius, const math::Vec3& color);

    // `box` in local coordinates is what `distances` covers; a texel's alpha is (d / distScale + 1) / 2 for
    // the signed distance d. A null texture draws nothing.
    void DrawPolygon(const math::RigidTransform& transform, const math::OBB2D& box,
                     const TexturePtr& distances, float distScale, const math::Vec3& color);

    // Of the plane normal . p + offset < 0, given as (normal, offset), what the view shows.
    void DrawPlane(const math::Vec3& plane, const math::Vec3& color);

    // Draws what waits. To be called before anything else is drawn over the shapes.
    void Flush();

  private:
    // A shader with the uniforms that all shapes have.
    struct ShapeShader {
        ShaderMentorPtr m_shader;
        UniformPtr m_borderSampler, m_color, m_width, m_pixelSize;
        UniformPtr m_distSampler, m_distScale;  // polygon
        UniformPtr m_radius;                    // circle
        UniformPtr m_falloff;                   // plane

        explicit ShapeShader(const String& name);
        bool IsUsable() const;
        void SetCommon(const math::Vec4& color, float width, float pixelSize, int borderUnit) const;
    };

    float GetWidth(float limit) const;
    const TexturePtr& GetProfile() const;

    void DrawCircleByShader(const math::RigidTransform& transform, float radius);
    void AddCircleOfDiscs(const math::RigidTransform& transform, float radius);
    void DrawPolygonByShader(const TexturePtr& distances, float distScale, float width) const;
    void DrawPolygonByUnits(const TexturePtr& distances, float distScale, float width) const;
    void DrawPolygonByAlphaTest(const TexturePtr& distances, float distScale, float width) const;
    void DrawBoxQuad() const;
    void DrawPlaneByShader(const math::Vec3& plane) const;
    void DrawPlaneByBands(const math::Vec3& plane) const;
    void DrawGround(const PlaneOutline& view, const math::Vec3& plane, float width) const;
    float GetFalloff() const;  // of the brightness with the depth, world units

    ShapeView m_view;
    math::Vec2 m_corners[4];  // of the polygon at hand, in the world
    ShapeShader m_polygonShader;
    ShapeShader m_circleShader;
    ShapeShader m_planeShader;
    TextureMentorPtr m_profile;                   // brightness along the radius, with rim
    TextureMentorPtr m_profileNoBorder;           // and without
    TextureMentorPtr m_disc;                      // plain white, for the path without shaders
    VertexBatch m_discs{VertexBatch::OwnColors};  // the circles that wait
};

}  // namespace rendering
