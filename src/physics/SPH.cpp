// Smoothed-particle hydrodynamics in the plane, after Müller, Charypar, Gross, "Particle-based fluid
// simulation for interactive applications" (2003), with the smooth kernel of Wendland (1995) and pressures by
// a density solve (WaterPressure.cpp).
//
// Letters: r distance and d position of the neighbour j less that of the particle i, h the kernel radius, m
// the mass of a particle, rho density, p pressure, v velocity, c speed of sound. With r < h and q = r / h:
//   W(r) = 7 / (pi h^2) (1 - q)^4 (1 + 4 q)     density
//   G(r) = 140 / (pi h^4) (1 - q)^3             gradient: that of W is -G d
//   L(r) = 40 / (pi h^5) (h - r)                viscosity
//   rho_i = sum m W(r), the particle itself included, and the touched bodies;
//   p_i = pressMultiplier c^2 (rho_i - density) and at least 0, of the density at the end of the step
//   C  = (p_i + p_j) / (2 rho_i rho_j), or p_j / rho_j^2 + p_i / rho_i^2
//   SP = sum C G(r) d;  SN = sum G(r) d / rho_j;  SV = sum (v_j - v_i) L(r) / (rho_i rho_j)
//   surfaceNormal = surfaceTension m SN
//   force = m (-m SP + viscMultiplier viscosity m SV + surfaceNormal)
// In water at rest drops lie sqrt(pi) radius apart, so each has its mass in its share of the area, and what
// floats displaces its own mass. G acts on d, not on d / r, so no division meets a zero.
//
// A body that is near, at the distance s from its surface with the normal n, counts as water at rest behind a
// straight line: the share of the kernel beyond the line, with u = 1 - s / h,
//   F = u^5 (1.5 - u), with the slope F' = -1.5 / h u^4 (5 - 4 u), continued to 1 - F inside,
// adds density F to rho_i (of the share BODY_SHARE), and pressure pushes along -density F' n.

#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "physics/Body.h"
#include "physics/WaterTouch.h"
#include "util/ProfileTree.h"
#include "util/Random.h"

namespace physics {

using math::real;
using math::Vec2;
using script::DeclareAttrib;
using script::Range;

SPH::SPH()
    : Reflected("SPH"),
      m_radius(DeclareAttrib(*this, "radius", 0.05f, Range<float>{0.001f, 10})),
      m_influence(DeclareAttrib(*this, "influence", 4.0f, Range<float>{0.5f, 8})),
      m_specialPressure(DeclareAttrib(*this, "specialPressure", false)),
      m_vaporizeTime(DeclareAttrib(*this, "vaporizeTime", 5.0f, Range<float>{0, 1e9f})),
      m_friction(DeclareAttrib(*this, "friction", 0.01f, Range<float>{0, 1000})),
      m_restitution(DeclareAttrib(*this, "restitution", 0.0f, Range<float>{0, 1})),
      m_soundSpeed(DeclareAttrib(*this, "soundSpeed", 20.0f, Range<float>{0, 1000})),
      m_density(DeclareAttrib(*this, "density", 1.0f, Range<float>{0.001f, 10000})),
      m_viscosity(DeclareAttrib(*this, "viscosity", 0.02f, Range<float>{0, 1000})),
      m_pressMultiplier(DeclareAttrib(*this, "pressMultiplier", 1.0f, Range<float>{0, 1000})),
      m_viscMultiplier(DeclareAttrib(*this, "viscMultiplier", 1.0f, Range<float>{0, 1000})),
      m_surfaceTension(DeclareAttrib(*this, "surfaceTension", 0.0f, Range<float>{-1000, 1000})),
      m_jitter(DeclareAttrib(*this, "jitter", 0.0f, Range<float>{0, 10000})),
      m_bucketSize(DeclareAttrib(*this, "bucketSize", 2.0f, Range<float>{0.1f, 100})),
      m_pressureSweeps(DeclareAttrib(*this, "pressureSweeps", 4, Range<int>{0, 1000})) {}

void SPH::Sort(const ParticleList& particles) {
    PROFILE_SECTION("Sorting particles");
    m_points.clear();
    m_points.reserve(particles.size());
    for (const ParticlePtr& particle : particles) m_points.push_back(particle.Get()->m_pos);
    // Cells wider than the kernel find the same neighbours at a higher price. Narrower ones lose some: the
    // user's choice of speed over detail.
    m_grid.Sort(m_points, m_radius->Get() * m_influence->Get() * std::min(m_bucketSize->Get(), 1.0f));
}

void SPH::Update(const ParticleList& particles, const BodyList& bodies, Vec2 gravity, real dt) {
    if (particles.empty()) return;
    PROFILE_SECTION("SPH::Update");
    const Kernel kernel = MakeKernel();
    SetMaterials(particles);
    FindNeighbors(particles, kernel);
    FindTouches(bodies, kernel);
    CalcDensities();
    AddInnerForces(kernel, dt);
    Jitter(particles, kernel.particleMass);
    ApplyFilm(bodies, kernel, gravity);
    SolvePressure(bodies, kernel, dt);
    StoreResults(dt);
    Evaporate(dt);
    CalcStatistics();
    m_sorted.clear();
    ShowStatistics();
}

real SPH::GetContactRadius() const {
    constexpr real SHARE = 0.1f;
    return m_radius->Get() * SHARE;
}

SPH::Kernel SPH::MakeKernel() const {
    const real h = m_radius->Get() * m_influence->Get();
    const real h2 = h * h;
    Kernel kernel;
    kernel.h = h;
    kernel.weightNorm = 7 / (math::PI * h2);
    kernel.gradientNorm = 140 / (math::PI * (h2 * h2));
    kernel.viscousNorm = 40 / (math::PI * (h2 * h2 * h));
    kernel.spacing = std::sqrt(math::PI) * m_radius->Get();
    kernel.restDensity = m_density->Get();
    kernel.particleMass = m_density->Get() * (m_radius->Get() * m_radius->Get() * math::PI);
    return kernel;
}

// Changed settings reach all water at once.
void SPH::SetMaterials(const ParticleList& particles) const {
    PROFILE_SECTION("Update rad/density");
    const real radius = m_radius->Get();
    const real density = m_density->Get();
    const real friction = m_friction->Get();
    const real restitution = m_restitution->Get();
    for (const ParticlePtr& particle : particles) {
        particle.Get()->SetMaterial(radius, density, friction, restitution);
    }
}

// ---- neighbours ----------------------------------------------------------------------------------------

void SPH::FindNeighbors(const ParticleList& particles, const Kernel& kernel) {
    PROFILE_SECTION("FindNeighbors");
    m_grid.FindPairs(kernel.h);
    TakeDrops(particles, kernel);
    CalcKernels(kernel);
    CountNeighbors();
}

void SPH::TakeDrops(const ParticleList& particles, const Kernel& kernel) {
    const real self = kernel.weightNorm * kernel.particleMass;
    const util::VectorPOD<uint32_t>& order = m_grid.GetOrder();
    m_sorted.resize(particles.size());
    m_drops.resize(particles.size());
    for (size_t i = 0; i < order.size(); ++i) {
        m_sorted[i] = particles[order[i]].Get();
        m_drops[i] = {m_sorted[i]->m_vel, self, m_sorted[i]->m_pressure, Vec2()};
    }
}

// Drops in one and the same place have no direction apart; they get one by their numbers.
static Vec2 MakeDirection(uint32_t i, uint32_t j, real length) {
    const real angle = static_cast<real>((i * 2376512323u + j * 3625334849u) >> 16);
    return {length * std::cos(angle), length * std::sin(angle)};
}

void SPH::CalcKernels(const Kernel& kernel) {
    constexpr real CLOSEST = 0.001f;  // kernel radii
    const size_t pairs = m_grid.GetPairCount();
    m_dist.resize(pairs);
    m_weights.resize(pairs);
    m_gradients.resize(pairs);
    const real* const distSq = m_grid.GetDistSq();
    const Vec2* const deltas = m_grid.GetDelta();
    const real inverseH = 1 / kernel.h;
    const real weightNorm = kernel.weightNorm * kernel.particleMass;
    const real gradientNorm = kernel.gradientNorm * kernel.particleMass;
    for (size_t p = 0; p < pairs; ++p) {
        const real dist = std::sqrt(distSq[p]);
        const real q = dist * inverseH;
        const real u = std::max(1 - q, 0.0f);
        const real u3 = u * u * u;
        m_dist[p] = dist;
        m_weights[p] = weightNorm * (u3 * u) * (1 + 4 * q);
        m_gradients[p] = deltas[p] * (gradientNorm * u3);
    }
    for (size_t p = 0; p < pairs; ++p) {
        if (distSq[p] > 0) continue;
        const Vec2 apart = MakeDirection(m_grid.GetFirst()[p], m_grid.GetSecond()[p], CLOSEST * kernel.h);
        m_gradients[p] = apart * gradientNorm;
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

// ---- bodies --------------------------------------------------------------------------------------------

void SPH::FindTouches(const BodyList& bodies, const Kernel& kernel) {
    PROFILE_SECTION("Finding touches");
    m_touches.clear();
    m_liesOnShape.clear();
    m_liesOnShape.resize(m_drops.size(), 0);
    for (uint32_t b = 0; b < bodies.size(); ++b) {
        const Body& body = *bodies[b].Get();
        for (const BodyPart& part : body.GetParts()) {
            const Geom& geom = *part.geom.Get();
            if (!geom.m_collideWater) continue;
            VisitNearGeom(m_grid, geom, kernel.h, [&](uint32_t drop, const Probe& probe) {
                AddTouch(kernel, body, b, drop, probe.distance, probe.normal);
            });
        }
    }
}

// A body as dense as water would keep drops a little farther away than they keep from each other, and
// displace too much; this share of the density was measured by what floats.
constexpr real BODY_SHARE = 0.95f;

void SPH::AddTouch(const Kernel& kernel, const Body& body, uint32_t bodyIndex, uint32_t drop, real distance,
                   Vec2 normal) {
    constexpr real LYING = 0.75f;  // spacings
    if (distance < LYING * kernel.spacing) m_liesOnShape[drop] = 1;
    const real u = 1 - std::min(std::fabs(distance) / kernel.h, 1.0f);
    const real u4 = u * u * u * u;
    const real outside = u4 * u * (1.5f - u);
    const real slope = 1.5f * u4 * (5 - 4 * u) / kernel.h;
    const real density = BODY_SHARE * kernel.restDensity;
    m_drops[drop].density += density * (distance < 0 ? 1 - outside : outside);
    const Vec2 gradient = normal * (density * slope);
    m_touches.push_back({drop, bodyIndex, gradient, gradient, m_grid.GetSortedPoints()[drop] - body.m_pos});
}

// ---- forces --------------------------------------------------------------------------------------------

void SPH::CalcDensities() {
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    for (size_t p = 0; p < pairs; ++p) {
        m_drops[first[p]].density += m_weights[p];
        m_drops[second[p]].density += m_weights[p];
    }
}

// Viscosity and surface tension, which pressure then takes into account like gravity.
void SPH::AddInnerForces(const Kernel& kernel, real dt) {
    PROFILE_SECTION("Inner forces");
    const bool hasSurface = m_surfaceTension->Get() != 0;
    hasSurface ? SumPairs<true>(kernel) : SumPairs<false>(kernel);
    const real m = kernel.particleMass;
    const real viscosity = GetViscosity(kernel, dt) * m;
    const real surface = m_surfaceTension->Get() * m;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        particle.m_surfaceNormal = m_sums[i].surface * surface;
        if (particle.IsImmovable()) continue;
        particle.m_force += m * (viscosity * m_sums[i].viscosity + particle.m_surfaceNormal);
    }
}

// Friction between drops levels their velocities at the rate viscosity (sum m L / rho^2), which in water at
// rest is 40 viscosity / (3 density h^2). A step may level them, not throw them about.
real SPH::GetViscosity(const Kernel& kernel, real dt) const {
    const real wanted = m_viscMultiplier->Get() * m_viscosity->Get();
    const real greatest = kernel.restDensity * kernel.h * kernel.h * 3 / 40 / dt;
    return dt > 0 ? std::min(wanted, greatest) : wanted;
}

template <bool SURFACE>
void SPH::SumPairs(const Kernel& kernel) {
    m_sums.clear();
    m_sums.resize(m_drops.size());
    const size_t pairs = m_grid.GetPairCount();
    const uint32_t* const first = m_grid.GetFirst();
    const uint32_t* const second = m_grid.GetSecond();
    const real massInv = 1 / kernel.particleMass;
    for (size_t p = 0; p < pairs;) {
        const uint32_t i = first[p];
        const WaterPressure::Drop a = m_drops[i];
        Sums own = m_sums[i];
        for (; p < pairs && first[p] == i; ++p) {
            const WaterPressure::Drop& b = m_drops[second[p]];
            Sums& other = m_sums[second[p]];
            const real l = kernel.viscousNorm * (kernel.h - m_dist[p]);
            const Vec2 viscosity = (b.vel - a.vel) * (l / (a.density * b.density));
            own.viscosity += viscosity;
            other.viscosity -= viscosity;
            if (SURFACE) {
                const Vec2 gradient = m_gradients[p] * massInv;
                own.surface += gradient / b.density;
                other.surface -= gradient / a.density;
            }
        }
        m_sums[i] = own;
    }
}

// By the pressures of the last step, which the drops still have.
void SPH::ApplyFilm(const BodyList& bodies, const Kernel& kernel, Vec2 gravity) {
    PROFILE_SECTION("Film");
    m_film.Apply(bodies, {m_grid, m_drops, m_liesOnShape}, {gravity, kernel.restDensity, kernel.spacing});
}

void SPH::SolvePressure(const BodyList& bodies, const Kernel& kernel, real dt) {
    PROFILE_SECTION("Pressure");
    constexpr real LONGEST = 0.5f;  // kernel radii in a step
    const real stiffness = m_pressMultiplier->Get() * m_soundSpeed->Get() * m_soundSpeed->Get();
    if (!(dt > 0 && stiffness > 0)) {
        for (WaterPressure::Drop& drop : m_drops) drop.pressure = 0;
        return;
    }
    for (size_t i = 0; i < m_drops.size(); ++i) {
        const Particle& particle = *m_sorted[i];
        m_drops[i].vel += dt * particle.GetMassInv() * particle.m_force;
    }
    ApplyFormula();
    const WaterPressure::Settings settings = {
        dt, kernel.restDensity, stiffness, kernel.particleMass, LONGEST * kernel.h, m_pressureSweeps->Get()};
    const WaterPressure::Pairs pairs = {m_grid.GetPairCount(), m_grid.GetFirst(), m_grid.GetSecond(),
                                        m_gradients.data(),
                                        m_specialPressure->Get() ? m_pushes.data() : m_gradients.data()};
    m_pressure.Solve(settings, pairs, m_touches, bodies, m_shares.data(), m_drops);
}

// What pressures act along, and the share of each that does: C of the one formula or of the other.
void SPH::ApplyFormula() {
    const bool isSpecial = m_specialPressure->Get();
    m_shares.resize(m_drops.size());
    for (size_t i = 0; i < m_drops.size(); ++i) {
        m_shares[i] = isSpecial ? 1 : 1 / (m_drops[i].density * m_drops[i].density);
    }
    if (!isSpecial) return;
    const size_t pairs = m_grid.GetPairCount();
    m_pushes.resize(pairs);
    for (size_t p = 0; p < pairs; ++p) {
        const real a = m_drops[m_grid.GetFirst()[p]].density;
        const real b = m_drops[m_grid.GetSecond()[p]].density;
        m_pushes[p] = m_gradients[p] / (2 * a * b);
    }
    for (WaterPressure::Touch& touch : m_touches) {
        const real density = m_drops[touch.drop].density;
        touch.push = touch.gradient / (density * density);
    }
}

void SPH::StoreResults(real dt) {
    const real accelerationPerShift = dt > 0 ? 1 / (dt * dt) : 0;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        const WaterPressure::Drop& drop = m_drops[i];
        particle.m_density = drop.density;
        particle.m_pressure = drop.pressure;
        particle.m_neighborCount = m_counts[i];
        if (!particle.IsImmovable()) particle.m_force += particle.m_mass * accelerationPerShift * drop.shift;
    }
}

// ---- the rest ------------------------------------------------------------------------------------------

// A drop is alone when it has no neighbour but itself. Simulation removes those that were for too long.
void SPH::Evaporate(real dt) {
    PROFILE_SECTION("Evaporation");
    for (Particle* const particle : m_sorted) {
        particle->m_vaporTime = particle->m_neighborCount < 2 ? particle->m_vaporTime + dt : 0;
    }
}

void SPH::Jitter(const ParticleList& particles, real particleMass) const {
    PROFILE_SECTION("Jitter");
    const real jitter = m_jitter->Get();
    if (jitter == 0) return;
    static util::Random random;
    for (const ParticlePtr& particle : particles) {
        if (particle.Get()->IsImmovable()) continue;
        const real x = util::DrawNormal(random);
        const real y = util::DrawNormal(random);
        particle.Get()->m_force += particleMass * jitter * Vec2(x, y);
    }
}

void SPH::CalcStatistics() {
    PROFILE_SECTION("Statistics");
    double neighbors = 0;
    double pressure = 0;
    double density = 0;
    for (size_t i = 0; i < m_drops.size(); ++i) {
        neighbors += m_counts[i];
        pressure += m_drops[i].pressure;
        density += m_drops[i].density;
    }
    const double count = static_cast<double>(m_drops.size());
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
