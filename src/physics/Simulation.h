#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/ConstraintSolver.h"
#include "physics/Fwd.h"
#include "physics/StepContacts.h"
#include "physics/StepSettings.h"
#include "physics/Surface.h"
#include "physics/SweptMotion.h"
#include "script/Attributes.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

namespace physics {

enum class Forces;

// The physics world. It owns bodies, joints, hinges, particles and contacts, turns real time into fixed
// steps within a budget, and runs the step.
//
// It must be made before any other body or geom, so that the world body and its geom get ID 0; they stand
// for the fixed world in joints and hinges and survive Clear. Only one ever exists in a process.
//
// A body is in the world from AddBody to RemoveBody, which takes its geoms away (and so breaks the cycle
// of ownership between the two). Joints and hinges over bodies that have left are retired by themselves, as
// are bodies that fly or fall out of the world; nothing of that is reported to the user.
//
// Lists and settings are changed between updates only, never from inside a step. Contacts belong to the
// step that found them: after the next one their objects describe others.
class Simulation : public script::Reflected, public util::Singleton<Simulation> {
  public:
    Simulation();

    // Advances the world by `dt` real seconds: as many steps as the time debt asks for and the budget
    // allows. Frozen, it still finds contacts.
    void Update(double dt);
    // One step of timeDelta. Inactive, it only finds contacts.
    void Step(bool active);

    const WorldGeomPtr& GetWorldGeom() const;
    BodyPtr GetWorldBody() const;

    // Ignored when present. The geoms stay where they stand: to go through the frame would move them by
    // rounding.
    void AddBody(const BodyPtr& body);
    void RemoveBody(const BodyPtr& body);  // takes its geoms away; ignored for the world body
    bool HasBody(const BodyPtr& body) const;
    void AddJoint(const JointPtr& joint);  // ignored when present
    void RemoveJoint(const JointPtr& joint);
    bool HasJoint(const JointPtr& joint) const;
    void AddConstraint(const HingePtr& constraint);  // ignored when present
    void RemoveConstraint(const HingePtr& constraint);
    bool HasConstraint(const HingePtr& constraint) const;
    void AddParticle(const ParticlePtr& particle);
    void ClearParticles();
    // Leaves the world body alone, with the world geom.
    void Clear();

    const BodyList& GetBodies() const { return m_bodies; }  // the world body first
    const JointSet& GetJoints() const { return m_joints; }
    const HingeSet& GetHinges() const { return m_hinges; }
    const ParticleList& GetParticles() const { return m_particles; }     // the order is not stable
    const ContactPool& GetContacts() const { return m_contacts.Get(); }  // of the last step
    uint32_t GetCacheHits() const { return m_contacts.GetCacheHits(); }  // contacts that persisted

    const String& GetStats() const { return m_stats; }                // of the last Update
    float GetRealtimeFraction() const { return m_realtimeFraction; }  // 0 to 1
    // Seconds of real time that one Update may spend.
    void SetMaxUpdateTime(float seconds) { m_maxUpdateTime = seconds; }

    // The settings as values, for who steps bodies, and for new shapes.
    StepSettings GetStepSettings() const;
    Surface GetDefaultSurface() const;

    // A figure over the places and velocities of all bodies and particles: equal states, equal figures.
    uint64_t HashState() const;
    // Walks what must always hold and throws BadCoderException where it does not. The checked build does
    // so in every step.
    void Validate() const;

    const script::AttribPtr<bool> m_running;
    const script::AttribPtr<float> m_timeFactor;    // simulated seconds per real second, 0 or above
    const script::AttribPtr<float> m_timeDelta;     // s, length of a step
    const script::AttribPtr<math::Vec2> m_gravity;  // m/s^2
    const script::AttribPtr<bool> m_gravitySwitch;
    const script::AttribPtr<bool> m_airFrictionOn;
    const script::AttribPtr<float> m_airFrictionLinear;     // per projected width and speed
    const script::AttribPtr<float> m_airFrictionQuadratic;  // per projected width and speed squared
    const script::AttribPtr<float> m_rotFrictionLinear;
    const script::AttribPtr<bool> m_airBuoyancy;
    const script::AttribPtr<float> m_airDensity;          // kg/m^2
    const script::AttribPtr<float> m_springForce;         // N/m per strength
    const script::AttribPtr<float> m_defaultBodyDensity;  // kg/m^2, of shapes that the program makes
    const script::AttribPtr<float> m_defaultBodyFriction;
    const script::AttribPtr<float> m_defaultBodyRestitution;
    const script::AttribPtr<float> m_fallLimit;  // m along gravity, beyond which things are removed
    const script::AttribPtr<bool> m_prioritizedSolver;
    const script::AttribPtr<float> m_targetPenetration;       // m, overlap at rest
    const script::AttribPtr<int> m_solveIter;                 // sweeps
    const script::AttribPtr<float> m_solveConstant;           // stiffness of the regularised constraints
    const script::AttribPtr<float> m_solveDcontacts;          // damping number of contacts
    const script::AttribPtr<float> m_solveDconstraints;       // damping number of hinges
    const script::AttribPtr<bool> m_solvePenetrationDamping;  // without effect
    const script::AttribPtr<float> m_solveDistFactor;
    const script::AttribPtr<float> m_solveVelFactor;
    const script::AttribPtr<float> m_solveAccFactor;
    const script::AttribPtr<float> m_solveRegularizationFactor;
    const script::AttribPtr<bool> m_solvePreSortConstraints;
    const script::AttribPtr<bool> m_solveConjugate;  // conjugate gradients between sweeps
    const script::AttribPtr<bool> m_leapFrog;
    const script::AttribPtr<bool> m_adHocSolver;
    const script::AttribPtr<bool> m_warmStart;
    const script::AttribPtr<float> m_warmStartFactor;
    const script::AttribPtr<float> m_maxPositionCorrection;  // m

  private:
    struct Air;

    void MakeWorldBody();
    void KeepGravityFinite();
    void PayTimeDebt(double dt);
    void WriteStats();

    void List(AbstractBody& body);
    bool VisitBodies(bool active);
    void CalcForces();
    static math::real CalcDrag(const Air& air, math::real width, math::real speed, math::real mass);
    static void AddBodyForces(Body& body, const Air& air);
    void AddParticleForces(const Air& air);
    void CalcContacts();
    void SolveAndMove(Forces forces);
    static void WarnOnce(bool& warned, const char* message);

    static bool IsBad(const Body& body, math::Vec2 down, float fallLimit);
    bool HasBadBodies() const;
    void RemoveBadBodies();
    void RemoveBadParts();
    void RemoveBadParticles();
    void RemoveBadJoints();
    void RemoveBadHinges();
    math::Vec2 GetEffectiveGravity() const;
    math::Vec2 GetDown() const;  // unit, or zero

    WorldGeomPtr m_worldGeom;  // the world body's first geom, ID 0
    BodyList m_bodies;
    JointSet m_joints;
    HingeSet m_hinges;
    ParticleList m_particles;
    AbstractBodyList m_allBodies;  // bodies, then particles; listed anew in each step
    StepContacts m_contacts;
    ConstraintSolver m_solver;
    SweptMotion m_sweptMotion;
    double m_timeDebt = 0;          // s, simulated time owed; negative when ahead
    float m_maxUpdateTime = 0.05f;  // s, set by the frame loop on each frame
    float m_realtimeFraction = 1;
    bool m_warnedOfNaN = false;       // until Clear
    bool m_warnedOfContacts = false;  // until Clear
    String m_stats;
};

}  // namespace physics
