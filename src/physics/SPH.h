#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/NeighborGrid.h"
#include "physics/NeighborLists.h"
#include "physics/Particle.h"
#include "physics/WaterFilm.h"
#include "physics/WaterPressure.h"
#include "physics/WaterTouches.h"
#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Singleton.h"
#include "util/VectorPOD.h"

namespace physics {

// Water as smoothed-particle hydrodynamics: the settings, and the pass that adds the fluid forces to the
// particles and to the bodies they touch. Holds no particles between passes; Simulation owns them, has them
// sorted and their touches found at the start of each step, and calls Update once per active step, after the
// rigid bodies' forces and before the solver.
//
// The pass gathers the particles into arrays sorted by grid cell, lists the neighbours of each, sums over
// these (WaterSums) and writes the results back to the particles. After the first pass scripts can call
// AVG_neighCount, AVG_pressure, AVG_density and hashInfo. Equations: SPH.cpp, WaterPressure.cpp.
class SPH : public script::Reflected, public util::Singleton<SPH> {
  public:
    SPH();

    // To be called whenever particles have moved, come or gone, before any of what follows.
    void Sort(const ParticleList& particles);
    // The particles as they were sorted last.
    const NeighborGrid& GetGrid() const { return m_grid; }
    // Which of these are near which bodies. `gravity`, in m/s^2, tells which way down is.
    void FindTouches(const BodyList& bodies, math::Vec2 gravity);
    // As they were found last.
    const WaterTouches& GetTouches() const { return m_found; }
    // Their neighbours in the last pass.
    const NeighborLists& GetNeighbors() const { return m_lists; }

    // The whole water step over `particles`, sorted, among `bodies`, with their touches; `dt` seconds long.
    // Of gravity, m/s^2, only the water in narrow gaps asks.
    void Update(const ParticleList& particles, const BodyList& bodies, math::Vec2 gravity, math::real dt);

    // What particles are made of now.
    const WaterMaterial& GetMaterial();

    // m: a particle's contacts with shapes begin at this distance. Pressure keeps it farther away where there
    // is enough water to press.
    math::real GetContactRadius() const;

    // Figures of the last pass: means over all particles, and the filling of the neighbour grid as text.
    float GetAverageNeighborCount() const { return m_averageNeighborCount; }
    float GetAveragePressure() const { return m_averagePressure; }
    float GetAverageDensity() const { return m_averageDensity; }
    String GetHashInfo() const;

    const script::AttribPtr<float> m_radius;          // m, of a particle
    const script::AttribPtr<float> m_influence;       // kernel radius in particle radii
    const script::AttribPtr<bool> m_specialPressure;  // which pressure formula
    const script::AttribPtr<float> m_vaporizeTime;    // s alone before removal
    const script::AttribPtr<float> m_friction;        // of the particles' geoms
    const script::AttribPtr<float> m_restitution;     // of the particles' geoms
    const script::AttribPtr<float> m_soundSpeed;      // m/s, in the equation of state
    const script::AttribPtr<float> m_density;         // kg/m^2 at rest
    const script::AttribPtr<float> m_viscosity;       // kg/s
    const script::AttribPtr<float> m_pressMultiplier;
    const script::AttribPtr<float> m_viscMultiplier;
    const script::AttribPtr<float> m_surfaceTension;
    const script::AttribPtr<float> m_jitter;        // deviation of the random acceleration, m/s^2
    const script::AttribPtr<float> m_bucketSize;    // cell size of the grid in kernel radii
    const script::AttribPtr<int> m_pressureSweeps;  // of the density solve

  private:
    // Constants of a pass.
    struct Kernel {
        math::real h;             // m, kernel radius
        math::real weightNorm;    // 7 / (pi h^2)
        math::real gradientNorm;  // 140 / (pi h^4)
        math::real viscousNorm;   // 40 / (pi h^4)
        math::real particleMass;  // kg
        math::real spacing;       // m, of drops at rest
        math::real bodyReach;     // m, up to which drops feel a body
        math::real restDensity;   // kg/m^2
    };
    Kernel MakeKernel() const;
    void FindNeighbors(const ParticleList& particles, const Kernel& kernel);
    void TakeDrops(const ParticleList& particles);
    void CalcKernels(const Kernel& kernel);
    void PartCoincident(math::real gradientNorm, math::real closest);
    void TakeTouches(const BodyList& bodies, const Kernel& kernel);
    void AddTouch(const Kernel& kernel, const BodyList& bodies, const WaterTouches::Found& found);
    void InvertDensities();
    void AddInnerForces(const Kernel& kernel, math::real dt);
    void AddSurfaceTension(math::real particleMass, math::real dt);
    math::real GetViscosity(const Kernel& kernel, math::real dt) const;
    void ApplyFilm(const BodyList& bodies, const Kernel& kernel, math::Vec2 gravity);
    void SolvePressure(const BodyList& bodies, const Kernel& kernel, math::real dt);
    void ApplyFormula();
    void StoreResults(math::real dt);
    void Jitter(const ParticleList& particles, math::real particleMass) const;
    void CalcStatistics();
    void ShowStatistics();

    NeighborGrid m_grid;
    NeighborLists m_lists;
    WaterMaterial m_material = {};
    util::VectorPOD<math::Vec2> m_points;  // positions, in the particles' order; as of the last Sort
    // From here on in the grid's order; arrays per drop are filled up to whole groups.
    util::VectorPOD<Particle*> m_sorted;  // empty between passes
    WaterPressure::Drops m_drops;
    util::VectorPOD<math::Vec2> m_sums;        // of viscosity or of surface tension
    util::VectorPOD<math::real> m_perDensity;  // 1 / rho
    util::VectorPOD<math::real> m_shares;      // per drop: the share of its pressure that acts
    util::VectorPOD<math::real> m_closeness;   // per pair: 1 - r / h
    util::VectorPOD<math::real> m_gradients;   // per pair: gradient kernel times mass times the way between
    util::VectorPOD<math::real> m_pushes;      // per pair: what pressure acts along, where that differs
    WaterTouches m_found;
    WaterPressure::Touches m_touches;        // those that pressure acts along
    util::VectorPOD<uint8_t> m_liesOnShape;  // per drop: 1 for one that has a shape closer than other drops
    WaterPressure m_pressure;
    WaterFilm m_film;

    bool m_hasStatistics = false;
    float m_averageNeighborCount = 0;
    float m_averagePressure = 0;
    float m_averageDensity = 0;
};

}  // namespace physics
