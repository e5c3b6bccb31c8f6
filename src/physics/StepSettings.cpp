// The weights of the rows.
//
// A constraint is a very stiff damped spring, integrated by a discrete stepper (the regularised, dissipative
// scheme of Lacoursière, "Ghosts and machines", 2007): with step h, stiffness k and damping number d, the
// softness eps of the diagonal and the weights of velocity and position error on the right-hand side are
//   eps  = 4 / ((1 + 4 d) h^2 k)
//   vel  = 4 d / (1 + 4 d)
//   dist = 4 / ((1 + 4 d) h)
//   slip = 1: friction has no position term that would bring back what it lets pass, so it lets nothing pass
//   acc  = s, the time over which forces still act after the solve: h/2 in leapfrog order, else 0.
// Ad hoc: eps = 0, vel = slip = 0, dist = 1/h, acc = s, which removes the position error in one step and
// knows no damping; stacks hop under it. With the defaults h = 0.01, k = 1e8, d = 5: eps = 1.9047619e-5, vel
// = 0.95238096, dist = 19.047619, acc = 0.005.

#include "physics/StepSettings.h"

namespace physics {

static RowWeights CalcRowWeights(const StepSettings& settings, math::real d) {
    const math::real h = settings.timeDelta;
    const math::real k = settings.stiffness;
    const math::real s = settings.leapFrog ? h / 2 : 0;
    RowWeights w;
    if (settings.adHoc) {
        w = {0, 0, 0, 1 / h, s};
    } else {
        w = {4 / ((1 + 4 * d) * h * h * k), 4 * d / (1 + 4 * d), 1, 4 / ((1 + 4 * d) * h), s};
    }
    w.dist *= settings.distFactor;
    w.vel *= settings.velFactor;
    w.slip *= settings.velFactor;
    w.acc *= settings.accFactor;
    w.eps *= settings.epsFactor;
    return w;
}

SolveConstants::SolveConstants(const StepSettings& settings)
    : contact(CalcRowWeights(settings, settings.contactDamping)),
      hinge(CalcRowWeights(settings, settings.hingeDamping)),
      timeDelta(settings.timeDelta),
      targetPenetration(settings.targetPenetration),
      maxPositionCorrection(settings.maxPositionCorrection),
      warmStartShare(settings.warmStartShare) {}

}  // namespace physics
