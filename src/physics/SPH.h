#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Fwd.h"
#include "physics/NeighborGrid.h"
#include "physics/Particle.h"
#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Singleton.h"
#include "util/VectorPOD.h"

namespace physics {

// Water as smoothed-particle hydrodynamics: the settings, and the pass that adds the fluid forces to the
// particles. Holds no particles between passes; Simulation owns them and calls Update once per active step,
// after the rigid bodies' forces and before the solver.
//
// The pass gathers the particles into arrays sorted by grid cell, finds each pair of neighbours once, sums
// over the pairs and writes the results back to the particles. After the first pass scripts can call
// AVG_neighCount, AVG_pressure, AVG_density and hashInfo. Equations: SPH.cpp.
class SPH : public script::Reflected, public util::Singleton<SPH> {
  public:
    SPH();

    // The whole water step over `particles`, `dt` seconds long.
    void Update(const ParticleList& particles, math::real dt);

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
    const script::AttribPtr<float> m_viscosity;
    const script::AttribPtr<float> m_pressMultiplier;
    const script::AttribPtr<float> m_viscMultiplier;
    const script::AttribPtr<float> m_surfaceTension;
    const script::AttribPtr<float> m_jitter;      // deviation of the random acceleration, m/s^2
    const script::AttribPtr<float> m_bucketSize;  // cell size of the grid in kernel radii

  private:
    // Constants of a pass.
    struct Kernel {
        math::real h;             // m, kernel radius
        math::real poly6Norm;     // 1 / (64 pi h^9)
        math::real spikyNorm;     // 1 / (pi h^6)
        math::real particleMass;  // kg
    };
    // What the sums need of a particle, in the order of the grid.
    struct State {
        math::Vec2 vel;
        math::real density;
        math::real pressure;
    };
    // What they give.
    struct Sums {
        math::Vec2 pressure;
        math::Vec2 viscosity;
        math::Vec2 surface;
    };

    bool IsUsable() const;
    Kernel MakeKernel() const;
    void SetMaterials(const ParticleList& particles) const;
    void FindNeighbors(const ParticleList& particles, const Kernel& kernel);
    void SortStates(const ParticleList& particles);
    void CountNeighbors();
    void LayOutNeighbors();
    void StoreNeighbors();
    void CalcSPHForces(const Kernel& kernel);
    void CalcKernels(const Kernel& kernel);
    void CalcDensities(const Kernel& kernel);
    template <bool SPECIAL, bool SURFACE>
    void SumPairs(const Kernel& kernel);
    void StoreResults(math::real particleMass);
    void Jitter(const ParticleList& particles, math::real particleMass) const;
    static void Evaporate(const ParticleList& particles, math::real dt);
    void CalcStatistics();
    void ShowStatistics();

    NeighborGrid m_grid;
    util::VectorPOD<math::Vec2> m_points;  // positions, in the particles' order; of the last pass
    util::VectorPOD<Particle*> m_sorted;   // from here on in the grid's order; empty between passes
    util::VectorPOD<State> m_states;
    util::VectorPOD<Sums> m_sums;
    util::VectorPOD<uint32_t> m_counts;               // neighbours, the particle itself among them
    util::VectorPOD<math::real> m_dist;               // per pair, m
    util::VectorPOD<math::real> m_weights;            // per pair: density kernel times mass
    util::VectorPOD<Particle::Neighbor> m_neighbors;  // of all particles, one list after the other
    util::VectorPOD<uint32_t> m_cursors;              // where each particle's next neighbour goes

    bool m_hasStatistics = false;
    float m_averageNeighborCount = 0;
    float m_averagePressure = 0;
    float m_averageDensity = 0;
};

}  // namespace physics
