#pragma once

#include "math/Matrix3.h"
#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "util/Singleton.h"
#include "util/String.h"

namespace rendering {

// A thin layer over fixed-function OpenGL: the present colour, lines, quads, matrices, screenshots. Quads in
// number go through rendering::VertexBatch.
//
// Rules for everybody who draws:
// - The colour is set here only, never by glColor: the cache would not know of it.
// - State changes stand between a ScopedAttribs and its end, matrix changes between a ScopedMatrix and its
//   end. A colour stands in a ScopedColor.
// - Drawing leaves GL_TEXTURE_2D as it found it.
class Renderer : public util::Pointee, public util::Singleton<Renderer> {
  public:
    Renderer();

    // Red, green, blue, alpha in 0 to 1. Reaches the driver only when it changes something.
    void SetColor(const math::Vec4& color);
    void MultColor(const math::Vec4& color);  // times the present colour; white does nothing
    const math::Vec4& GetColor() const { return m_color; }

    // Sets the present colour once more: after GL state was popped, after arrays with colours of their own,
    // and in a new context.
    void RestoreColor();

    // Multiplies into the current matrix; z stays as it is.
    void MultMatrix(const math::TMatrix3<float>& matrix);
    void MultMatrix(const math::RigidTransform& transform);

    // A strip, or a loop when `closed`, with the width and colour in force, untextured.
    void DrawLines(const math::Vec2List& points, bool closed);
    void DrawLines(const math::Vec2* points, size_t nPoints, bool closed);
    // Separate lines, two points each.
    void DrawSegments(const math::Vec2* points, size_t nPoints);
    void DrawPoints(const math::Vec2* points, size_t nPoints);

    // One axis-aligned quad in the present colour with texture coordinates `tcMin` at `min`; pass tcMin.y
    // above tcMax.y where y points down, so that pictures stand upright (t = 1 is a picture's upper edge).
    void DrawQuad(math::Vec2 min, math::Vec2 max, math::Vec2 tcMin = {0, 0}, math::Vec2 tcMax = {1, 1});
    // Any convex outline.
    void DrawPolygon(const math::Vec2* points, const math::Vec2* texCoords, size_t nPoints);

    // With a colour for each point, untextured; the present colour plays no part.
    void DrawColored(const math::Vec2* points, const math::Vec4* colors, size_t nPoints);

    // Saves the present frame as prefix_yymmdd_n.tga with the first n that is free, or, after 10000 of them,
    // over "to_many_screenshots.tga" in the working directory. Makes a missing folder. A failure is logged.
    void Screenshot(String prefix);

  private:
    math::Vec4 m_color{1, 1, 1, 1};  // what GL has
};

// GL's attributes, put back at the end of a scope together with the colour, which GL restores behind the
// renderer's back.
class ScopedAttribs {
  public:
    ScopedAttribs();
    ~ScopedAttribs();
    ScopedAttribs(const ScopedAttribs&) = delete;
    ScopedAttribs& operator=(const ScopedAttribs&) = delete;

  private:
    math::Vec4 m_color;
};

// A colour for a scope, after which the present one comes back.
class ScopedColor {
  public:
    ScopedColor();  // the present one, for who changes it by himself
    explicit ScopedColor(const math::Vec4& color);
    explicit ScopedColor(const math::Vec3& factor);  // times the present colour, of which alpha stays
    ~ScopedColor();
    ScopedColor(const ScopedColor&) = delete;
    ScopedColor& operator=(const ScopedColor&) = delete;

  private:
    const math::Vec4 m_kept;
};

// The modelview matrix, put back at the end of a scope.
class ScopedMatrix {
  public:
    ScopedMatrix();
    ~ScopedMatrix();
    ScopedMatrix(const ScopedMatrix&) = delete;
    ScopedMatrix& operator=(const ScopedMatrix&) = delete;
};

// Switches one GL capability for a scope.
class ScopedCapability {
  public:
    ScopedCapability(unsigned int capability, bool enabled);
    ~ScopedCapability();
    ScopedCapability(const ScopedCapability&) = delete;
    ScopedCapability& operator=(const ScopedCapability&) = delete;

  private:
    unsigned int m_capability;
    bool m_wasEnabled;
};

}  // namespace rendering
