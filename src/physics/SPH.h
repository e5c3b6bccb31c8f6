#pragma once

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

namespace physics {

// Water as smoothed-particle hydrodynamics: the settings, and the pass that adds the fluid forces to the
// particles. Holds no particles between passes; Simulation owns them and calls Update once per active step,
// after the rigid bodies' forces and before the solver.
class SPH : public script::Reflected, public util::Singleton<SPH> {
  public:
    SPH();

    // The whole water step over `particles`, `dt` seconds long.
    void Update(const ParticleList& particles, math::real dt);

    const script::AttribPtr<float> m_radius;          // m, of a particle
    const script::AttribPtr<float> m_influence;       // kernel radius in particle radii
    const script::AttribPtr<bool> m_specialPressure;  // which pressure formula
    const script::AttribPtr<float> m_vaporizeTime;    // s alone before removal
    const script::AttribPtr<float> m_friction;        // of the particles' geoms
    const script::AttribPtr<float> m_restitution;     // of the particles' geoms
    const script::AttribPtr<float> m_soundSpeed;      // m/s, in the equation of state
    const script::AttribPtr<float> m_density;         // kg/m^2 at rest
    const script::AttribPtr<float> m_viscosity;
    const script::AttribPtr<float> m_pressMultiplier;
    const script::AttribPtr<float> m_viscMultiplier;
    const script::AttribPtr<float> m_surfaceTension;
    const script::AttribPtr<float> m_jitter;      // deviation of the random acceleration, m/s^2
    const script::AttribPtr<float> m_bucketSize;  // cell size of the grid in kernel radii
};

}  // namespace physics
