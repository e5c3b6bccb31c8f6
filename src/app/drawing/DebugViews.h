#pragma once

#include "app/drawing/DrawSettings.h"
#include "physics/Fwd.h"

namespace app {

// Drawings for whoever looks under the hood, in world coordinates. The renderer's colour
// comes back as it was.

// Over the whole scene.
void DrawBodyCenters(const physics::BodyList& bodies);
void DrawParticleCenters(const physics::ParticleList& particles);
void DrawContacts(float normalLength);  // of the last step, with normals that long

// Of one shape what the settings ask for: boxes, bounding circle, vertices.
void DrawDebugLayers(const physics::Geom& geom, const DrawSettings& settings);

}  // namespace app
