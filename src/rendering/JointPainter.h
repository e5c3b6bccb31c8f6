#pragma once

#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "rendering/Texture.h"
#include "util/Singleton.h"

namespace rendering {

// The look of joints: turned icons, and springs as strips of coil. Lengths in world units; the modelview
// matrix is that of the world, blending by the source's alpha and GL_TEXTURE_2D are on before and after.
// Colours multiply with the renderer's.
class JointPainter : public util::Pointee, public util::Singleton<JointPainter> {
  public:
    JointPainter();

    void DrawHinge(const math::RigidTransform& place, float size, const math::Vec3& color);
    void DrawFixJoint(const math::RigidTransform& place, float size, const math::Vec3& color);
    // From end to end, so wide. The coil repeats as often as its pictures are about square at rest, and is
    // drawn out or pressed together with the spring.
    void DrawSpring(math::Vec2 from, math::Vec2 to, float width, float restLength, const math::Vec3& color);

    // How many pictures of the coil lie on a spring, at least one.
    static int GetCoilCount(float length, float width);
    // One picture of a coil: three turns along x, 64 by 64, transparent between them; it joins itself.
    static ImageRGBA32Ptr MakeCoilImage();

  private:
    static void DrawIcon(const TextureMentorPtr& texture, const math::RigidTransform& place, float size,
                         const math::Vec3& color);

    TextureMentorPtr m_hinge;
    TextureMentorPtr m_fixJoint;
    TextureMentorPtr m_coil;
};

}  // namespace rendering
