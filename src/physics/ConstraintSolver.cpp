// The constants of a step.
//
// A constraint is a very stiff damped spring, integrated by a discrete stepper (the regularised, dissipative
// scheme of Lacoursière, "Ghosts and machines", 2007): with step h, stiffness k and damping number d, the
// softness eps of the diagonal and the weights of velocity and position error on the right-hand side are
//   eps  = 4 / ((1 + 4 d) h^2 k)
//   vel  = 4 d / (1 + 4 d)
//   dist = 4 / ((1 + 4 d) h)
//   acc  = s, the time over which forces still act after the solve: h/2 in leapfrog order, else 0.
// Ad hoc: eps = 0, vel = 0, dist = 1/h, acc = s, which removes the position error in one step and knows no
// damping; stacks hop under it.
// With the defaults h = 0.01, k = 1e8, d = 5: eps = 1.9047619e-5, vel = 0.95238096, dist = 19.047619,
// acc = 0.005.

#include "physics/ConstraintSolver.h"

#include <algorithm>

#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"
#include "physics/Hinge.h"
#include "physics/HingeSolve.h"
#include "physics/Simulation.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace physics {

namespace {

struct StepConstants {
    math::real eps;
    math::real vel;
    math::real dist;
    math::real acc;
};

StepConstants CalcStepConstants(const Simulation& simulation, math::real d) {
    const math::real h = simulation.m_timeDelta->Get();
    const math::real k = simulation.m_solveConstant->Get();
    const math::real s = simulation.m_leapFrog->Get() ? h / 2 : 0;
    StepConstants c;
    if (simulation.m_adHocSolver->Get()) {
        c = {0, 0, 1 / h, s};
    } else {
        c = {4 / ((1 + 4 * d) * h * h * k), 4 * d / (1 + 4 * d), 4 / ((1 + 4 * d) * h), s};
    }
    c.dist *= simulation.m_solveDistFactor->Get();
    c.vel *= simulation.m_solveVelFactor->Get();
    c.acc *= simulation.m_solveAccFactor->Get();
    c.eps *= simulation.m_solveRegularizationFactor->Get();
    return c;
}

void SetContactConstants(const Simulation& simulation) {
    const StepConstants c = CalcStepConstants(simulation, simulation.m_solveDcontacts->Get());
    Contact::s_contactEps = c.eps;
    Contact::s_contactVel = c.vel;
    Contact::s_contactDist = c.dist;
    Contact::s_contactAcc = c.acc;
    Contact::s_targetPenetration = simulation.m_targetPenetration->Get();
    Contact::s_maxPositionCorrection = simulation.m_maxPositionCorrection->Get();
    Contact::s_warmStart = simulation.m_warmStart->Get();
    Contact::s_warmStartFactor = simulation.m_warmStartFactor->Get();
}

void SetHingeConstants(const Simulation& simulation) {
    const StepConstants c = CalcStepConstants(simulation, simulation.m_solveDconstraints->Get());
    Hinge::s_hingeEps = c.eps;
    Hinge::s_hingeVel = c.vel;
    Hinge::s_hingeDist = c.dist;
    Hinge::s_hingeAcc = c.acc;
    Hinge::s_timeDelta = simulation.m_timeDelta->Get();
    Hinge::s_maxPositionCorrection = simulation.m_maxPositionCorrection->Get();
    Hinge::s_warmStart = simulation.m_warmStart->Get();
    Hinge::s_warmStartFactor = simulation.m_warmStartFactor->Get();
}

}  // namespace

void ConstraintSolver::Run(const AbstractBodyList& bodies, const HingeSet& hinges,
                           const ContactPool& contacts) {
    PROFILE_SECTION("RunSolver");
    const Simulation& simulation = Simulation::Instance();
    const int sweeps = std::max(simulation.m_solveIter->Get(), 0);
    SetContactConstants(simulation);
    SetHingeConstants(simulation);
    InitBodies(bodies);
    BuildList(hinges, contacts);
    InitConstraints(bodies);
    if (simulation.m_prioritizedSolver->Get()) {
        SolvePrioritized(bodies, sweeps);
    } else {
        SolveGaussSeidel(bodies, sweeps, simulation.m_solvePreSortConstraints->Get());
    }
    ExitConstraints();
    ApplyVelocityChanges(bodies);
}

void ConstraintSolver::InitBodies(const AbstractBodyList& bodies) {
    PROFILE_SECTION("Init bodies");
    for (uint32_t i = 0; i < bodies.size(); ++i) {
        bodies[i]->m_deltaVel = math::Vec2();
        bodies[i]->m_deltaAngVel = 0;
        bodies[i]->m_index = i;
    }
}

void ConstraintSolver::BuildList(const HingeSet& hinges, const ContactPool& contacts) {
    m_list.clear();
    m_list.reserve(hinges.size() + contacts.size());
    for (const HingePtr& hinge : hinges) m_list.push_back({hinge.Get(), hinge.Get()});
    for (const ContactPtr& contact : contacts) m_list.push_back({contact.Get(), nullptr});
}

// A constraint that refuses gives its place to the last one, which is then asked in turn.
void ConstraintSolver::InitConstraints(const AbstractBodyList& bodies) {
    PROFILE_SECTION("SolveInit");
    for (size_t i = 0; i < m_list.size(); ++i) {
        while (i < m_list.size() && !InitConstraint(m_list[i], bodies)) {
            CODE_ASSERTION(!m_list.empty());
            m_list[i] = m_list.back();
            m_list.pop_back();
        }
    }
}

static bool IsListed(const AbstractBody* body, const AbstractBodyList& bodies) {
    return body->m_index < bodies.size() && bodies[body->m_index] == body;
}

bool ConstraintSolver::InitConstraint(const Entry& entry, const AbstractBodyList& bodies) {
    Constraint* const constraint = entry.constraint;
    const bool isWanted =
        entry.hinge ? entry.hinge->SolveInit() : static_cast<Contact*>(constraint)->SolveInit();
    return isWanted && IsListed(constraint->m_bodies[0], bodies) && IsListed(constraint->m_bodies[1], bodies);
}

void ConstraintSolver::ExitConstraints() {
    PROFILE_SECTION("SolveExit");
    for (const Entry& entry : m_list) {
        if (entry.hinge) {
            entry.hinge->SolveExit();
        } else {
            static_cast<Contact*>(entry.constraint)->SolveExit();
        }
    }
}

void ConstraintSolver::ApplyVelocityChanges(const AbstractBodyList& bodies) {
    PROFILE_SECTION("Applying velchanges");
    for (AbstractBody* const body : bodies) {
        if (body->m_held || body->m_massInv == 0) continue;
        body->m_vel += body->m_deltaVel;
        body->m_angVel += body->m_deltaAngVel;
    }
}

}  // namespace physics
