#pragma once

#include "math/OBB2D.h"
#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/Fwd.h"

namespace app {

// Drawings for whoever looks under the hood, in world coordinates, each behind its setting of app::App. The
// renderer's colour comes back as it was.

// Over the whole scene.
void DrawBodyCenters(const physics::BodyList& bodies);
void DrawParticleCenters(const physics::ParticleList& particles);
void DrawContacts(float normalLength);  // of App's contacts, with normals that long

// Of one shape.
void DrawBox(const math::OBB2D& box, const math::RigidTransform& transform);
void DrawBoundingCircle(const math::Vec3& circle);
void DrawVertices(const math::Vec2List& vertices);

}  // namespace app
