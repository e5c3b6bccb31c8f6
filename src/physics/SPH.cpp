// Smoothed-particle hydrodynamics after Müller, Charypar, Gross, "Particle-based fluid simulation for
// interactive applications" (2003), with two decisions of its own.
//
// Letters: r distance and d position of the neighbour j less that of the particle i, h the kernel radius, m
// the mass of a particle, rho density, p pressure, v velocity, c speed of sound. With r < h:
//   W(r) = 315 / (64 pi h^9) (h^2 - r^2)^3      density
//   G(r) = 45 / (pi h^6) (h - r)^2              gradient
//   L(r) = 45 / (pi h^6) (h - r)                viscosity
//   rho_i = sum m W(r), the particle itself included;  p_i = c^2 (rho_i - density)
//   C  = (p_i + p_j) / (2 rho_i rho_j), or p_j / rho_j^2 + p_i / rho_i^2
//   SP = sum C G(r) d;  SN = sum G(r) d / rho_j;  SV = sum (v_j - v_i) L(r) / (rho_i rho_j)
//   surfaceNormal = surfaceTension m SN
//   force = m (-m pressMultiplier SP + viscMultiplier viscosity m SV + surfaceNormal)
// The decisions: G acts on d and not on d / r, so that the force fades as particles come close; and the self
// term stays in rho, so that a lone particle (12.3 with the defaults) is far above the density at rest,
// pressure always pushes, and no division meets a zero.
//
// C, d and v_j - v_i only change sign when i and j change places, so each pair is visited once.

#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "util/ProfileTree.h"
#include "util/Random.h"

namespace physics {

SPH::SPH()
    : Reflected("SPH"),
      m_radius(script::DeclareAttrib(*this, "radius", 0.05f)),
      m_influence(script::DeclareAttrib(*this, "influence", 2.0f)),
      m_specialPressure(script::DeclareAttrib(*this, "specialPressure", true)),
      m_vaporizeTime(script::DeclareAttrib(*this, "vaporizeTime", 5.0f)),
      m_friction(script::DeclareAttrib(*this, "friction", 0.01f)),
      m_restitution(script::DeclareAttrib(*this, "restitution", 0.0f)),
      m_soundSpeed(script::DeclareAttrib(*this, "soundSpeed", 20.0f)),
      m_density(script::DeclareAttrib(*this, "density", 1.0f)),
      m_viscosity(script::DeclareAttrib(*this, "viscosity", 0.5f)),
      m_pressMultiplier(script::DeclareAttrib(*this, "pressMultiplier", 1.0f)),
      m_viscMultiplier(script::DeclareAttrib(*this, "viscMultiplier", 1.0f)),
      m_surfaceTension(script::DeclareAttrib(*this, "surfaceTension", 0.0f)),
      m_jitter(script::DeclareAttrib(*this, "jitter", 0.0f)),
      m_bucketSize(script::DeclareAttrib(*this, "bucketSize", 2.0f)) {}

void SPH::Update(const ParticleList& particles, math::real dt) {
    if (particles.empty()) return;
    PROFILE_SECTION("SPH::Update");
    if (!IsUsable()) {
        for (const ParticlePtr& particle : particles) particle.Get()->m_neighbors = {};
        return;
    }
    const Kernel kernel = MakeKernel();
    SetMaterials(particles);
    FindNeighbors(particles, kernel);
    CalcSPHForces(kernel);
    Evaporate(particles, dt);
    Jitter(particles, kernel.particleMass);
    CalcStatistics();
    m_sorted.clear();
    ShowStatistics();
}

// With a radius, kernel or density that is not above 0 there is nothing to compute but zeros divided by
// zeros.
bool SPH::IsUsable() const {
    return m_radius->Get() > 0 && m_influence->Get() > 0 && m_density->Get() > 0;
}

SPH::Kernel SPH::MakeKernel() const {
    constexpr math::real PI_64 = 201.06194f;
    const math::real h = m_radius->Get() * m_influence->Get();
    const math::real h3 = h * h * h;
    Kernel kernel;
    kernel.h = h;
    kernel.poly6Norm = 1 / (PI_64 * (h3 * h3 * h3));
    kernel.spikyNorm = 1 / (math::PI * (h3 * h3));
    kernel.particleMass = m_density->Get() * (m_radius->Get() * m_radius->Get() * math::PI);
    return kernel;
}

// Changed settings reach all water at once.
void SPH::SetMaterials(const ParticleList& particles) const {
    PROFILE_SECTION("Update rad/density");
    const math::real radius = m_radius->Get();
    const math::real density = m_density->Get();
    const math::real friction = m_friction->Get();
    const math::real restitution = m_restitution->Get();
    for (const ParticlePtr& particle : particles) {
        particle.Get()->SetMaterial(radius, density, friction, restitution);
    }
}

// ---- neighbours ----------------------------------------------------------------------------------------

void SPH::FindNeighbors(const ParticleList& particles, const Kernel& kernel) {
    PROFILE_SECTION("FindNeighbors");
    m_points.clear();
    m_points.reserve(particles.size());
    for (const ParticlePtr& particle : particles) m_points.push_back(particle.Get()->m_pos);
    // Cells wider than the kernel find the same neighbours at a higher price. Narrower ones lose some, which
    // is allowed.
    const math::real cellSize = kernel.h * std::min(m_bucketSize->Get(), 1.0f);
    {
        PROFILE_SECTION("Hashing particles");
        m_grid.Build(m_points, kernel.h, cellSize);
        SortStates(particles);
    }
    PROFILE_SECTION("Building neighbor lists");
    CalcKernels(kernel);
    StoreNeighbors();
}

void SPH::SortStates(const ParticleList& particles) {
    const util::VectorPOD<uint32_t>& order = m_grid.GetOrder();
    m_sorted.resize(particles.size());
    m_states.resize(particles.size());
    for (size_t i = 0; i < order.size(); ++i) {
        m_sorted[i] = particles[order[i]].Get();
        m_states[i].vel = m_sorted[i]->m_vel;
    }
}

void SPH::CalcKernels(const Kernel& kernel) {
    const size_t pairs = m_grid.GetPairCount();
    m_dist.resize(pairs);
    m_weights.resize(pairs);
    const math::real* const distSq = m_grid.GetDistSq();
    math::real* const dist = m_dist.data();
    math::real* const weights = m_weights.data();
    const math::real hSq = kernel.h * kernel.h;
    const math::real norm = 315 * kernel.poly6Norm * kernel.particleMass;
    for (size_t p = 0; p < pairs; ++p) {
        const math::real q = hSq - distSq[p];
        dist[p] = std::sqrt(distSq[p]);
        weights[p] = norm * (q * q * q);
    }
}

void SPH::CountNeighbors() {
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    m_counts.clear();
    m_counts.resize(m_sorted.size(), 1);
    for (size_t p = 0; p < pairs; ++p) {
        ++m_counts[first[p]];
        ++m_counts[second[p]];
    }
}

// Gives each particle its stretch of the array and its first neighbour: itself.
void SPH::LayOutNeighbors() {
    m_neighbors.resize(m_sorted.size() + 2 * m_grid.GetPairCount());
    m_cursors.resize(m_sorted.size());
    uint32_t begin = 0;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        m_neighbors[begin] = {m_sorted[i], 0, math::Vec2()};
        m_sorted[i]->m_neighbors = Particle::NeighborList(&m_neighbors[begin], m_counts[i]);
        m_cursors[i] = begin + 1;
        begin += m_counts[i];
    }
}

void SPH::StoreNeighbors() {
    CountNeighbors();
    LayOutNeighbors();
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    const math::Vec2* const deltas = m_grid.GetDelta();
    for (size_t p = 0; p < pairs; ++p) {
        m_neighbors[m_cursors[first[p]]++] = {m_sorted[second[p]], m_dist[p], deltas[p]};
        m_neighbors[m_cursors[second[p]]++] = {m_sorted[first[p]], m_dist[p], -deltas[p]};
    }
}

// ---- forces --------------------------------------------------------------------------------------------

void SPH::CalcSPHForces(const Kernel& kernel) {
    PROFILE_SECTION("CalcSPHForces");
    CalcDensities(kernel);
    const bool surface = m_surfaceTension->Get() != 0;
    if (m_specialPressure->Get()) {
        surface ? SumPairs<true, true>(kernel) : SumPairs<true, false>(kernel);
    } else {
        surface ? SumPairs<false, true>(kernel) : SumPairs<false, false>(kernel);
    }
    StoreResults(kernel.particleMass);
}

void SPH::CalcDensities(const Kernel& kernel) {
    const math::real hSq = kernel.h * kernel.h;
    const math::real self = 315 * kernel.poly6Norm * (hSq * hSq * hSq) * kernel.particleMass;
    for (State& state : m_states) state.density = self;
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    for (size_t p = 0; p < pairs; ++p) {
        m_states[first[p]].density += m_weights[p];
        m_states[second[p]].density += m_weights[p];
    }
    const math::real soundSpeed = m_soundSpeed->Get();
    const math::real restDensity = m_density->Get();
    for (State& state : m_states) {
        state.pressure = soundSpeed * soundSpeed * (state.density - restDensity);
    }
}

template <bool SPECIAL, bool SURFACE>
void SPH::SumPairs(const Kernel& kernel) {
    m_sums.clear();
    m_sums.resize(m_states.size());
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    const math::Vec2* const deltas = m_grid.GetDelta();
    const math::real norm = 45 * kernel.spikyNorm;
    const math::real h = kernel.h;
    for (size_t p = 0; p < pairs;) {
        const uint32_t i = first[p];
        const State a = m_states[i];
        Sums own = m_sums[i];
        for (; p < pairs && first[p] == i; ++p) {
            const State& b = m_states[second[p]];
            Sums& other = m_sums[second[p]];
            const math::Vec2 d = deltas[p];
            const math::real inverse = 1 / (a.density * b.density);
            const math::real c =
                SPECIAL ? (a.pressure + b.pressure) * 0.5f * inverse
                        : b.pressure / (b.density * b.density) + a.pressure / (a.density * a.density);
            const math::real l = norm * (h - m_dist[p]);
            const math::real g = l * (h - m_dist[p]);
            const math::Vec2 pressure = d * (c * g);
            const math::Vec2 viscosity = (b.vel - a.vel) * (l * inverse);
            own.pressure += pressure;
            other.pressure -= pressure;
            own.viscosity += viscosity;
            other.viscosity -= viscosity;
            if (SURFACE) {
                own.surface += d * (g / b.density);
                other.surface -= d * (g / a.density);
            }
        }
        m_sums[i] = own;
    }
}

void SPH::StoreResults(math::real m) {
    const math::real pressure = -m * m_pressMultiplier->Get();
    const math::real viscosity = m_viscMultiplier->Get() * m_viscosity->Get() * m;
    const math::real surface = m_surfaceTension->Get() * m;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        const Sums& sums = m_sums[i];
        particle.m_density = m_states[i].density;
        particle.m_pressure = m_states[i].pressure;
        particle.m_surfaceNormal = sums.surface * surface;
        if (particle.IsImmovable()) continue;
        particle.m_force +=
            m * (pressure * sums.pressure + viscosity * sums.viscosity + particle.m_surfaceNormal);
    }
}

// ---- the rest ------------------------------------------------------------------------------------------

// A drop is alone when it has no neighbour but itself. Simulation removes those that were for too long.
void SPH::Evaporate(const ParticleList& particles, math::real dt) {
    PROFILE_SECTION("Evaporation");
    for (const ParticlePtr& pointer : particles) {
        Particle& particle = *pointer.Get();
        particle.m_vaporTime = particle.m_neighbors.size() < 2 ? particle.m_vaporTime + dt : 0;
    }
}

void SPH::Jitter(const ParticleList& particles, math::real particleMass) const {
    PROFILE_SECTION("Jitter");
    const math::real jitter = m_jitter->Get();
    if (jitter == 0) return;
    static util::Random random;
    for (const ParticlePtr& particle : particles) {
        if (particle.Get()->IsImmovable()) continue;
        const math::real x = util::DrawNormal(random);
        const math::real y = util::DrawNormal(random);
        particle.Get()->m_force += particleMass * jitter * math::Vec2(x, y);
    }
}

void SPH::CalcStatistics() {
    PROFILE_SECTION("Statistics");
    double neighbors = 0;
    double pressure = 0;
    double density = 0;
    for (size_t i = 0; i < m_states.size(); ++i) {
        neighbors += m_counts[i];
        pressure += m_states[i].pressure;
        density += m_states[i].density;
    }
    const double count = static_cast<double>(m_states.size());
    m_averageNeighborCount = static_cast<float>(neighbors / count);
    m_averagePressure = static_cast<float>(pressure / count);
    m_averageDensity = static_cast<float>(density / count);
}

// The figures are commands and not variables: they exist from the first pass on and are never saved.
void SPH::ShowStatistics() {
    if (m_hasStatistics) return;
    m_hasStatistics = true;
    AddCmd("AVG_neighCount", this, &SPH::GetAverageNeighborCount);
    AddCmd("AVG_pressure", this, &SPH::GetAveragePressure);
    AddCmd("AVG_density", this, &SPH::GetAverageDensity);
    AddCmd("hashInfo", this, &SPH::GetHashInfo);
    AllowGuests({"AVG_neighCount", "AVG_pressure", "AVG_density", "hashInfo"});
}

// How the drops of the last pass fill the cells of the grid.
String SPH::GetHashInfo() const {
    const size_t cells = m_grid.GetCellCount();
    std::ostringstream text;
    text << "Number of elements:  " << cells << "\n"
         << "Average bucket size: " << static_cast<float>(m_points.size()) / static_cast<float>(cells) << "\n"
         << "Maximum bucket size: " << m_grid.GetFullestCell() << "\n";
    return text.str();
}

}  // namespace physics
