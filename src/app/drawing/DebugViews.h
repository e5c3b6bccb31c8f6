#pragma once

#include "physics/Fwd.h"

namespace app {

// Drawings for whoever looks under the hood, in world coordinates, each behind its setting of app::App. The
// renderer's colour comes back as it was.

// Over the whole scene.
void DrawBodyCenters(const physics::BodyList& bodies);
void DrawParticleCenters(const physics::ParticleList& particles);
void DrawContacts(float normalLength);  // of App's contacts, with normals that long

// Of one shape: boxes, bounding circle, vertices.
void DrawDebugLayers(const physics::Geom& geom);
void DrawDebugLayers(const physics::Polygon& polygon);

}  // namespace app
