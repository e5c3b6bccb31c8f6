#include "physics/Simulation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "logging/Log.h"
#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/StepSettings.h"
#include "util/Assert.h"
#include "util/Callback.h"
#include "util/Clock.h"

namespace physics {

using script::Range;

constexpr float UNLIMITED = std::numeric_limits<float>::infinity();

Simulation::Simulation()
    : Reflected("Sim"),
      m_running(script::DeclareAttrib(*this, "running", true)),
      m_timeFactor(script::DeclareAttrib(*this, "timeFactor", 1.0f, Range<float>{0, 1e6f})),
      m_timeDelta(script::DeclareAttrib(*this, "timeDelta", 0.005f, Range<float>{0, 1})),
      m_gravity(script::DeclareAttrib(*this, "gravity", math::Vec2(0, -9.8f))),
      m_gravitySwitch(script::DeclareAttrib(*this, "gravitySwitch", true)),
      m_airFrictionOn(script::DeclareAttrib(*this, "airFrictionOn", true)),
      m_airFrictionLinear(script::DeclareAttrib(*this, "airFrictionLinear", 0.01f, Range<float>{0, 1e9f})),
      m_airFrictionQuadratic(
          script::DeclareAttrib(*this, "airFrictionQuadratic", 0.0f, Range<float>{0, 1e9f})),
      m_rotFrictionLinear(script::DeclareAttrib(*this, "rotFrictionLinear", 0.01f, Range<float>{0, 1e9f})),
      m_airBuoyancy(script::DeclareAttrib(*this, "airBuoyancy", true)),
      m_airDensity(script::DeclareAttrib(*this, "airDensity", 0.01f, Range<float>{-1e6f, 1e6f})),
      m_springForce(script::DeclareAttrib(*this, "springForce", 1000.0f, Range<float>{0, 1e9f})),
      m_defaultBodyDensity(
          script::DeclareAttrib(*this, "defaultBodyDensity", Surface().density, Range<float>{1e-6f, 1e6f})),
      m_defaultBodyFriction(
          script::DeclareAttrib(*this, "defaultBodyFriction", Surface().friction, Range<float>{0, 1})),
      m_defaultBodyRestitution(
          script::DeclareAttrib(*this, "defaultBodyRestitution", Surface().restitution, Range<float>{0, 1})),
      m_fallLimit(script::DeclareAttrib(*this, "fallLimit", 1000.0f, Range<float>{0, 1e9f})),
      m_prioritizedSolver(script::DeclareAttrib(*this, "prioritizedSolver", false)),
      m_targetPenetration(script::DeclareAttrib(*this, "targetPenetration", 0.001f, Range<float>{0, 1})),
      m_solveIter(script::DeclareAttrib(*this, "solveIter", 40, Range<int>{0, 10000})),
      m_solveConstant(script::DeclareAttrib(*this, "solveConstant", 1e8f, Range<float>{1, 1e20f})),
      m_solveDcontacts(script::DeclareAttrib(*this, "solveDcontacts", 5.0f, Range<float>{0, 1e6f})),
      m_solveDconstraints(script::DeclareAttrib(*this, "solveDconstraints", 5.0f, Range<float>{0, 1e6f})),
      m_solvePenetrationDamping(script::DeclareAttrib(*this, "solvePenetrationDamping", false)),
      m_solveDistFactor(script::DeclareAttrib(*this, "solveDistFactor", 1.0f, Range<float>{0, 1000})),
      m_solveVelFactor(script::DeclareAttrib(*this, "solveVelFactor", 1.0f, Range<float>{0, 1000})),
      m_solveAccFactor(script::DeclareAttrib(*this, "solveAccFactor", 1.0f, Range<float>{0, 1000})),
      m_solveRegularizationFactor(
          script::DeclareAttrib(*this, "solveRegularizationFactor", 1.0f, Range<float>{0, 1000})),
      m_solvePreSortConstraints(script::DeclareAttrib(*this, "solvePreSortConstraints", true)),
      m_solveConjugate(script::DeclareAttrib(*this, "solveConjugate", true)),
      m_leapFrog(script::DeclareAttrib(*this, "leapFrog", true)),
      m_adHocSolver(script::DeclareAttrib(*this, "adHocSolver", false)),
      m_warmStart(script::DeclareAttrib(*this, "warmStart", true)),
      m_warmStartFactor(script::DeclareAttrib(*this, "warmStartFactor", 0.8f, Range<float>{0, 1})),
      m_maxPositionCorrection(
          script::DeclareAttrib(*this, "maxPositionCorrection", UNLIMITED, Range<float>{0, UNLIMITED})) {
    m_gravity->AddOnChange(new util::Callback([this] { KeepGravityFinite(); }, this));
    MakeWorldBody();
}

void Simulation::KeepGravityFinite() {
    constexpr float STRONGEST = 1e6f;  // m/s^2
    const auto limit = [=](float x) { return x == x ? std::clamp(x, -STRONGEST, STRONGEST) : 0; };
    const math::Vec2 gravity = m_gravity->Get();
    m_gravity->Set(math::Vec2(limit(gravity.x), limit(gravity.y)));
}

void Simulation::MakeWorldBody() {
    m_worldGeom = new WorldGeom;
    const BodyPtr worldBody = new Body;
    worldBody->SetGeom(m_worldGeom);
    AddBody(worldBody);
    CODE_ASSERTION(m_worldGeom->GetID() == 0);
    CODE_ASSERTION(worldBody->GetID() == 0);
}

const WorldGeomPtr& Simulation::GetWorldGeom() const {
    CODE_ASSERTION(m_worldGeom->GetID() == 0);
    return m_worldGeom;
}

BodyPtr Simulation::GetWorldBody() const {
    const BodyPtr ret = util::DynamicCast<Body>(m_worldGeom->GetBody());
    CODE_ASSERTION(ret);
    CODE_ASSERTION(ret->GetID() == 0);
    return ret;
}

StepSettings Simulation::GetStepSettings() const {
    StepSettings s;
    s.timeDelta = m_timeDelta->Get();
    s.leapFrog = m_leapFrog->Get();
    s.springForce = m_springForce->Get();
    s.sweeps = m_solveIter->Get();
    s.conjugate = m_solveConjugate->Get();
    s.prioritized = m_prioritizedSolver->Get();
    s.preSort = m_solvePreSortConstraints->Get();
    s.adHoc = m_adHocSolver->Get();
    s.stiffness = m_solveConstant->Get();
    s.contactDamping = m_solveDcontacts->Get();
    s.hingeDamping = m_solveDconstraints->Get();
    s.distFactor = m_solveDistFactor->Get();
    s.velFactor = m_solveVelFactor->Get();
    s.accFactor = m_solveAccFactor->Get();
    s.epsFactor = m_solveRegularizationFactor->Get();
    s.targetPenetration = m_targetPenetration->Get();
    s.maxPositionCorrection = m_maxPositionCorrection->Get();
    s.warmStartShare = m_warmStart->Get() ? m_warmStartFactor->Get() : 0;
    return s;
}

Surface Simulation::GetDefaultSurface() const {
    Surface surface;
    surface.density = m_defaultBodyDensity->Get();
    surface.friction = m_defaultBodyFriction->Get();
    surface.restitution = m_defaultBodyRestitution->Get();
    return surface;
}

// ---- lists ---------------------------------------------------------------------------------------------

void Simulation::AddBody(const BodyPtr& body) {
    CODE_ASSERTION(body);
    if (HasBody(body)) return;
    m_bodies.push_back(body);
    body->m_lastPos = body->m_pos;
    body->m_lastAngle = body->m_angle;
    body->m_inWorld = true;
}

void Simulation::RemoveBody(const BodyPtr& body) {
    if (!HasBody(body) || body == GetWorldBody()) return;
    const BodyPtr hold = body;  // which may be the list's own pointer
    m_bodies.erase(std::find(m_bodies.begin(), m_bodies.end(), hold));
    hold->m_inWorld = false;
    hold->SetGeoms(GeomSet());
}

bool Simulation::HasBody(const BodyPtr& body) const {
    return body && body->m_inWorld;
}

void Simulation::AddJoint(const JointPtr& joint) {
    CODE_ASSERTION(joint);
    if (HasJoint(joint)) return;
    joint->OnAdd();
    m_joints.insert(joint);
}

void Simulation::RemoveJoint(const JointPtr& joint) {
    if (!HasJoint(joint)) return;
    const JointPtr hold = joint;
    hold->OnRemove();
    m_joints.erase(hold);
}

bool Simulation::HasJoint(const JointPtr& joint) const {
    return m_joints.count(joint) != 0;
}

void Simulation::AddConstraint(const HingePtr& constraint) {
    CODE_ASSERTION(constraint);
    if (HasConstraint(constraint)) return;
    constraint->OnAdd();
    m_hinges.insert(constraint);
}

void Simulation::RemoveConstraint(const HingePtr& constraint) {
    if (!HasConstraint(constraint)) return;
    const HingePtr hold = constraint;
    hold->OnRemove();
    m_hinges.erase(hold);
}

bool Simulation::HasConstraint(const HingePtr& constraint) const {
    return m_hinges.count(constraint) != 0;
}

// Particle and geom own each other only while the particle is in the world.
void Simulation::AddParticle(const ParticlePtr& particle) {
    CODE_ASSERTION(particle);
    particle->m_geom->SetBody(particle.Get());
    m_particles.push_back(particle);
    particle->m_lastPos = particle->m_pos;
}

void Simulation::ClearParticles() {
    for (const ParticlePtr& particle : m_particles) particle->m_geom->SetBody(nullptr);
    m_particles.clear();
}

void Simulation::Clear() {
    m_contacts.Clear();
    m_warnedOfNaN = m_warnedOfContacts = false;
    m_allBodies.clear();
    m_timeDebt = 0;
    ClearParticles();
    while (!m_joints.empty()) RemoveJoint(*m_joints.begin());
    while (!m_hinges.empty()) RemoveConstraint(*m_hinges.begin());
    const BodyPtr worldBody = GetWorldBody();
    BodyList bodies;
    bodies.swap(m_bodies);
    for (const BodyPtr& body : bodies) {
        body->m_inWorld = false;
        if (body != worldBody) body->SetGeoms(GeomSet());
    }
    worldBody->SetGeom(m_worldGeom);
    AddBody(worldBody);
}

// ---- time ----------------------------------------------------------------------------------------------

void Simulation::Update(double dt) {
    m_stats.clear();
    if (m_timeFactor->Get() < 0) m_timeFactor->Set(0);
    if (!m_running->Get() || math::IsZero(m_timeFactor->Get())) {
        m_stats += "Frozen\n";
        Step(false);
    } else {
        PayTimeDebt(dt);
    }
    if (HasBadBodies()) RemoveBadBodies();
    RemoveBadParts();
    WriteStats();
}

// Runs steps until the debt is paid or one more step of the last one's length would overrun the budget.
// Debt that cannot be paid is forgiven: the world slows down instead of falling ever further behind.
void Simulation::PayTimeDebt(double dt) {
    m_timeDebt += dt * m_timeFactor->Get();
    const double owed = m_timeDebt;
    const double start = util::Clock::Now();
    const float h = m_timeDelta->Get();
    while (m_timeDebt > 0) {
        const double before = util::Clock::Now();
        Step(m_running->Get());
        const double after = util::Clock::Now();
        m_timeDebt -= h;
        // Without a length no number of steps would do.
        if (!(h > 0)) break;
        if ((after - start) + dt + (after - before) > m_maxUpdateTime) break;
    }
    if (m_timeDebt <= 0) {
        m_realtimeFraction = 1;
        m_stats += "100% realtime.\n";
        return;
    }
    const double fraction = (owed - m_timeDebt) / owed;
    m_realtimeFraction = std::isfinite(fraction) ? static_cast<float>(std::max(fraction, 0.0)) : 0;
    m_timeDebt = 0;
    char text[32];
    std::snprintf(text, sizeof(text), "%3d%% realtime\n",
                  static_cast<int>(std::lround(100 * m_realtimeFraction)));
    m_stats += text;
}

static String FormatRate(float rate) {
    if (rate > std::numeric_limits<float>::max()) return "+inf";
    if (rate < -std::numeric_limits<float>::max()) return "-inf";
    std::ostringstream text;
    text << rate;
    return text.str();
}

void Simulation::WriteStats() {
    size_t geoms = 0;
    for (const BodyPtr& body : m_bodies) geoms += body->GetGeoms().size();
    const bool isWorldPlain = GetWorldBody()->GetGeoms().size() == 1;
    std::ostringstream text;
    text << m_bodies.size() - (isWorldPlain ? 1 : 0) << " bodies\n"
         << geoms - 1 << " geometries\n"
         << m_particles.size() << " particles\n"
         << m_contacts.Get().size() << " contacts\n"
         << m_joints.size() << " springs\n"
         << m_hinges.size() << " hinges\n"
         << "Running at " << FormatRate(1 / m_timeDelta->Get()) << " Hz\n";
    m_stats += text.str();
}

// ---- removal -------------------------------------------------------------------------------------------

math::Vec2 Simulation::GetEffectiveGravity() const {
    return m_gravitySwitch->Get() && m_running->Get() ? m_gravity->Get() : math::Vec2();
}

math::Vec2 Simulation::GetDown() const {
    return math::Normalized(GetEffectiveGravity());
}

// What has flown off, fallen out or lost an end leaves the world; nothing is reported to the user.
bool Simulation::IsBad(const Body& body, math::Vec2 down, float fallLimit) {
    return body.IsBad() || math::Dot(down, body.m_pos) > fallLimit;
}

bool Simulation::HasBadBodies() const {
    const math::Vec2 down = GetDown();
    const float limit = m_fallLimit->Get();
    return std::any_of(m_bodies.begin(), m_bodies.end(),
                       [&](const BodyPtr& body) { return IsBad(*body.Get(), down, limit); });
}

void Simulation::RemoveBadBodies() {
    const math::Vec2 down = GetDown();
    const float limit = m_fallLimit->Get();
    const BodyPtr world = GetWorldBody();
    BodyList good, bad;
    for (const BodyPtr& body : m_bodies)
        (IsBad(*body, down, limit) && body != world ? bad : good).push_back(body);
    m_bodies.swap(good);
    for (const BodyPtr& body : bad) {
        Log(logging::Trace, "Removing bad object");
        body->m_inWorld = false;
        body->SetGeoms(GeomSet());
    }
}

// What hangs on bodies, and drops.
void Simulation::RemoveBadParts() {
    RemoveBadParticles();
    RemoveBadJoints();
    RemoveBadHinges();
}

void Simulation::List(AbstractBody& body) {
    body.m_index = static_cast<uint32_t>(m_allBodies.size());
    m_allBodies.push_back(&body);
}

void Simulation::RemoveBadParticles() {
    if (m_particles.empty()) return;
    const math::Vec2 down = GetDown();
    const float limit = m_fallLimit->Get();
    const float vaporizeTime = SPH::Instance().m_vaporizeTime->Get();
    for (size_t i = 0; i < m_particles.size();) {
        const Particle& particle = *m_particles[i].Get();
        const bool isGone = particle.IsOutOfRange() || particle.m_vaporTime > vaporizeTime ||
                            math::Dot(down, particle.m_pos) > limit;
        if (!isGone) {
            ++i;
            continue;
        }
        m_particles[i]->m_geom->SetBody(nullptr);
        m_particles[i] = m_particles.back();
        m_particles.pop_back();
    }
}

void Simulation::RemoveBadJoints() {
    for (auto next = m_joints.begin(); next != m_joints.end();) {
        const JointPtr joint = *next++;
        if (!joint->IsValid()) RemoveJoint(joint);
    }
}

void Simulation::RemoveBadHinges() {
    for (auto next = m_hinges.begin(); next != m_hinges.end();) {
        const HingePtr hinge = *next++;
        if (!hinge->AreBodiesValid()) RemoveConstraint(hinge);
    }
}

}  // namespace physics
