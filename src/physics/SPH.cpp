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
//   force = m (-m SP + viscMultiplier viscosity m SV + surfaceNormal - CALMING v / (1 + |v|^2 /
//   CALM_SPEED^2))
// The last term stands for what wears down small waves at walls, floor and surface, which drops are too
// coarse for: without it a pool swings to and fro for half a minute. It holds up nothing that anything
// pushes. In water at rest drops lie sqrt(pi) radius apart, so each has its mass in its share of the area,
// and what floats displaces its own mass. G acts on d, not on d / r, so no division meets a zero.
//
// A body stands for water at rest behind its surface. With s the distance from there, n the normal, and
// u = 1 - s / (BODY_REACH h),
//   F = BODY_DENSITY u^3, continued to 2 BODY_DENSITY - F inside,
// adds density F to rho_i, and pressure pushes along -PRESS_BACK density F' n. It reaches less far than a
// drop and is steeper than the share of the kernel behind a straight line: so the drops at a wall keep half a
// spacing from it, under the pressure of those beside them. PRESS_BACK stands for the pressure of the water
// that is not there, which would be equal and make it 2. But only with 1 are the forces those of an energy,
// and the farther from that the more a pool simmers; with 1 a few drops under a body bear up less than water
// does, and what is lighter than water lies on the floor. The three numbers were chosen by what floats, rises
// and comes to rest.

#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "physics/Body.h"
#include "physics/WaterSums.h"
#include "physics/WaterTouch.h"
#include "util/ProfileTree.h"
#include "util/Random.h"

namespace physics {

using math::real;
using math::Vec2;
using script::DeclareAttrib;
using script::Range;

constexpr real BODY_REACH = 0.65f;    // kernel radii
constexpr real BODY_DENSITY = 0.55f;  // of that at rest: what a body adds at its surface
constexpr real PRESS_BACK = 1.45f;

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
    FindNeighbors(particles, kernel);
    TakeTouches(bodies, kernel);
    InvertDensities();
    Jitter(particles, kernel.particleMass);
    AddInnerForces(kernel, dt);
    ApplyFilm(bodies, kernel, gravity);
    SolvePressure(bodies, kernel, dt);
    StoreResults(dt);
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
    kernel.viscousNorm = 40 / (math::PI * (h2 * h2));
    kernel.spacing = std::sqrt(math::PI) * m_radius->Get();
    kernel.bodyReach = BODY_REACH * h;
    kernel.restDensity = m_density->Get();
    kernel.particleMass = m_density->Get() * (m_radius->Get() * m_radius->Get() * math::PI);
    return kernel;
}

const WaterMaterial& SPH::GetMaterial() {
    const WaterMaterial now = {m_radius->Get(), m_density->Get(), m_friction->Get(), m_restitution->Get(),
                               m_material.version};
    const bool isSame = now.radius == m_material.radius && now.density == m_material.density &&
                        now.friction == m_material.friction && now.restitution == m_material.restitution;
    if (!isSame) {
        m_material = now;
        ++m_material.version;
    }
    return m_material;
}

// ---- neighbours ----------------------------------------------------------------------------------------

void SPH::FindNeighbors(const ParticleList& particles, const Kernel& kernel) {
    PROFILE_SECTION("FindNeighbors");
    m_lists.Build(m_grid, kernel.h);
    TakeDrops(particles);
    CalcKernels(kernel);
}

// Changed settings reach all water at once.
void SPH::TakeDrops(const ParticleList& particles) {
    const WaterMaterial& material = GetMaterial();
    const util::VectorPOD<uint32_t>& order = m_grid.GetOrder();
    const size_t padded = m_lists.GetPaddedCount();
    m_sorted.resize(particles.size());
    m_drops.vels.resize(padded);
    m_drops.pressures.resize(padded);
    for (size_t i = 0; i < order.size(); ++i) {
        Particle& particle = *particles[order[i]].Get();
        if (particle.GetMaterialVersion() != material.version) particle.SetMaterial(material);
        m_sorted[i] = &particle;
        m_drops.vels[i] = particle.m_vel;
        m_drops.pressures[i] = particle.m_pressure;
    }
    for (size_t i = order.size(); i < padded; ++i) {
        m_drops.vels[i] = Vec2();
        m_drops.pressures[i] = 0;
    }
}

// For an array that is filled anew: it need not keep what it holds, and has room for what comes and goes.
static void ResizeAnew(util::VectorPOD<real>& array, size_t size) {
    if (size > array.capacity()) {
        array.clear();
        array.reserve(size + size / 8);
    }
    array.resize(size);
}

void SPH::CalcKernels(const Kernel& kernel) {
    constexpr real CLOSEST = 0.001f;  // kernel radii, that drops in one place count as being apart
    const size_t pairs = m_lists.GetPlaceCount();
    ResizeAnew(m_closeness, pairs);
    ResizeAnew(m_gradients, 2 * pairs);
    m_drops.densities.resize(m_lists.GetPaddedCount());
    KernelSums sums;
    sums.perRadius = 1 / kernel.h;
    sums.weightNorm = kernel.weightNorm * kernel.particleMass;
    sums.self = sums.weightNorm;
    sums.gradientNorm = kernel.gradientNorm * kernel.particleMass;
    sums.points = m_grid.GetSortedPoints();
    sums.gradients = m_gradients.data();
    sums.closeness = m_closeness.data();
    sums.densities = m_drops.densities.data();
    const bool anyCoincide = GetWaterSums().addKernels(m_lists.GetRows(), sums);
    if (anyCoincide) PartCoincident(sums.gradientNorm, CLOSEST * kernel.h);
}

// Drops in one and the same place have no direction apart; they get one by their numbers.
static Vec2 MakeDirection(uint32_t i, uint32_t j, real length) {
    if (i > j) return -MakeDirection(j, i, length);
    const real angle = static_cast<real>((i * 2376512323u + j * 3625334849u) >> 16);
    return {length * std::cos(angle), length * std::sin(angle)};
}

void SPH::PartCoincident(real gradientNorm, real closest) {
    constexpr uint32_t LANES = NeighborLists::LANES;
    const NeighborRows lists = m_lists.GetRows();
    const Vec2* const points = m_grid.GetSortedPoints();
    for (uint32_t i = 0; i < m_sorted.size(); ++i) {
        for (uint32_t k = 0; k < lists.counts[i]; ++k) {
            const size_t row = lists.begins[i / LANES] + k, lane = i % LANES;
            const uint32_t j = lists.neighbors[row * LANES + lane];
            if (math::LengthSquared(points[j] - points[i]) > 0) continue;
            const Vec2 gradient = MakeDirection(i, j, closest) * gradientNorm;
            m_gradients[2 * row * LANES + lane] = gradient.x;
            m_gradients[(2 * row + 1) * LANES + lane] = gradient.y;
        }
    }
}

// ---- bodies --------------------------------------------------------------------------------------------

void SPH::FindTouches(const BodyList& bodies, Vec2 gravity) {
    PROFILE_SECTION("Finding touches");
    const Kernel kernel = MakeKernel();
    m_found.Find(m_grid, bodies, {kernel.bodyReach, kernel.spacing, math::Normalized(gravity)});
}

void SPH::TakeTouches(const BodyList& bodies, const Kernel& kernel) {
    m_touches.clear();
    m_liesOnShape.clear();
    m_liesOnShape.resize(m_sorted.size(), 0);
    for (const WaterTouches::Found& found : m_found.GetAll()) {
        if (!found.isLet) AddTouch(kernel, bodies, found);
    }
}

void SPH::AddTouch(const Kernel& kernel, const BodyList& bodies, const WaterTouches::Found& found) {
    constexpr real LYING = 0.75f;  // spacings
    const uint32_t drop = found.drop;
    const real distance = found.probe.distance;
    if (distance < LYING * kernel.spacing) m_liesOnShape[drop] = 1;
    const real u = std::max(1 - std::fabs(distance) / kernel.bodyReach, 0.0f);
    const real outside = BODY_DENSITY * u * u * u;
    const real slope = 3 * BODY_DENSITY * u * u / kernel.bodyReach;
    m_drops.densities[drop] += kernel.restDensity * (distance < 0 ? 2 * BODY_DENSITY - outside : outside);
    const Vec2 gradient = found.probe.normal * (kernel.restDensity * slope);
    const Vec2 arm = m_grid.GetSortedPoints()[drop] - bodies[found.body]->m_pos;
    m_touches.push_back({drop, found.body, gradient, gradient * PRESS_BACK, arm});
}

// ---- forces --------------------------------------------------------------------------------------------

void SPH::InvertDensities() {
    const size_t count = m_drops.densities.size();
    m_perDensity.resize(count);
    for (size_t i = 0; i < count; ++i) m_perDensity[i] = 1 / m_drops.densities[i];
}

constexpr real CALMING = 3;         // 1/s, by which the slowest drops lose speed
constexpr real CALM_SPEED = 0.06f;  // m/s, up to which they do

// Viscosity and surface tension, which pressure then takes into account like gravity.
void SPH::AddInnerForces(const Kernel& kernel, real dt) {
    PROFILE_SECTION("Inner forces");
    m_sums.resize(m_lists.GetPaddedCount());
    GetWaterSums().addFriction(m_lists.GetRows(),
                               {m_closeness.data(), m_perDensity.data(), m_drops.vels.data(), m_sums.data()});
    const real m = kernel.particleMass;
    const real viscosity = GetViscosity(kernel, dt) * kernel.viscousNorm * m * m;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        particle.m_surfaceNormal = Vec2();
        if (!particle.IsImmovable()) {
            const Vec2 v = particle.m_vel;
            const real calming = CALMING * m / (1 + math::LengthSquared(v) / (CALM_SPEED * CALM_SPEED));
            particle.m_force += viscosity * m_perDensity[i] * m_sums[i] - calming * v;
        }
        m_drops.vels[i] += dt * particle.GetMassInv() * particle.m_force;
    }
    if (m_surfaceTension->Get() != 0) AddSurfaceTension(m, dt);
}

void SPH::AddSurfaceTension(real particleMass, real dt) {
    GetWaterSums().addSurface(m_lists.GetRows(), {m_gradients.data(), m_perDensity.data(), m_sums.data()});
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        particle.m_surfaceNormal = m_sums[i] * m_surfaceTension->Get();
        if (particle.IsImmovable()) continue;
        particle.m_force += particleMass * particle.m_surfaceNormal;
        m_drops.vels[i] += dt * particle.m_surfaceNormal;
    }
}

// Friction between drops levels their velocities at the rate viscosity (sum m L / rho^2), which in water at
// rest is 40 viscosity / (3 density h^2). A step may level them, not throw them about.
real SPH::GetViscosity(const Kernel& kernel, real dt) const {
    const real wanted = m_viscMultiplier->Get() * m_viscosity->Get();
    const real greatest = kernel.restDensity * kernel.h * kernel.h * 3 / 40 / dt;
    return dt > 0 ? std::min(wanted, greatest) : wanted;
}

// By the pressures of the last step, which the drops still have.
void SPH::ApplyFilm(const BodyList& bodies, const Kernel& kernel, Vec2 gravity) {
    PROFILE_SECTION("Film");
    m_film.Apply(bodies, {m_grid, m_drops, m_liesOnShape, m_found},
                 {gravity, kernel.restDensity, kernel.spacing});
}

void SPH::SolvePressure(const BodyList& bodies, const Kernel& kernel, real dt) {
    PROFILE_SECTION("Pressure");
    constexpr real LONGEST = 0.5f;  // kernel radii in a step
    const real stiffness = m_pressMultiplier->Get() * m_soundSpeed->Get() * m_soundSpeed->Get();
    m_drops.shifts.clear();
    m_drops.shifts.resize(m_lists.GetPaddedCount());
    if (!(dt > 0 && stiffness > 0)) {
        for (real& pressure : m_drops.pressures) pressure = 0;
        return;
    }
    ApplyFormula();
    const WaterPressure::Settings settings = {
        dt, kernel.restDensity, stiffness, kernel.particleMass, LONGEST * kernel.h, m_pressureSweeps->Get()};
    const WaterPressure::Pairs pairs = {m_lists.GetRows(), m_gradients.data(),
                                        m_specialPressure->Get() ? m_pushes.data() : m_gradients.data()};
    m_pressure.Solve(settings, pairs, m_touches, bodies, m_shares.data(), m_drops);
}

// What pressures act along, and the share of each that does: C of the one formula or of the other.
void SPH::ApplyFormula() {
    const bool isSpecial = m_specialPressure->Get();
    m_shares.resize(m_perDensity.size());
    for (size_t i = 0; i < m_shares.size(); ++i) {
        m_shares[i] = isSpecial ? 1 : m_perDensity[i] * m_perDensity[i];
    }
    if (!isSpecial) return;
    constexpr uint32_t LANES = NeighborLists::LANES;
    const NeighborRows lists = m_lists.GetRows();
    m_pushes.resize(m_gradients.size());
    for (uint32_t g = 0; g < lists.groups; ++g) {
        for (size_t at = size_t(lists.begins[g]) * LANES; at < size_t(lists.begins[g + 1]) * LANES; ++at) {
            const size_t lane = at % LANES;
            const real share = m_perDensity[g * LANES + lane] * m_perDensity[lists.neighbors[at]] / 2;
            const size_t x = 2 * at - lane;
            m_pushes[x] = m_gradients[x] * share;
            m_pushes[x + LANES] = m_gradients[x + LANES] * share;
        }
    }
    for (WaterPressure::Touch& touch : m_touches) {
        touch.push *= m_perDensity[touch.drop] * m_perDensity[touch.drop];
    }
}

// A drop is alone when it has no neighbour but itself. Simulation removes those that were for too long.
void SPH::StoreResults(real dt) {
    const real accelerationPerShift = dt > 0 ? 1 / (dt * dt) : 0;
    const uint32_t* const counts = m_lists.GetRows().counts;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        Particle& particle = *m_sorted[i];
        particle.m_density = m_drops.densities[i];
        particle.m_pressure = m_drops.pressures[i];
        particle.m_neighborCount = counts[i] + 1;
        particle.m_vaporTime = counts[i] == 0 ? particle.m_vaporTime + dt : 0;
        if (!particle.IsImmovable()) {
            particle.m_force += particle.m_mass * accelerationPerShift * m_drops.shifts[i];
        }
    }
}

// ---- the rest ------------------------------------------------------------------------------------------

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
    double pressure = 0;
    double density = 0;
    for (size_t i = 0; i < m_sorted.size(); ++i) {
        pressure += m_drops.pressures[i];
        density += m_drops.densities[i];
    }
    const double count = static_cast<double>(m_sorted.size());
    const double neighbors = count + 2 * static_cast<double>(m_lists.GetPairCount());
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
