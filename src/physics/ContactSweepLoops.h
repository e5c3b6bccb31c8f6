#pragma once

#include "physics/ContactRow.h"
#include "physics/ContactSweeps.h"
#include "physics/SolverBody.h"

namespace physics {

// SolveContactRows and ApplyImpulsePair, operation by operation, for several contacts side by side; and, in a
// sweep with a trend, the step along it that is still to be made.
//
// A form tells how many, and has the type of as many floats: `V` with + - * and the sign, Load, Store, Fill,
// Zero, Max and Min (as those of std::), and Swap, which turns bodies' velocities and inverse masses into
// one V of each and back.
template <class Form>
class ContactSweepLoops {
    using V = typename Form::V;
    static constexpr uint32_t PARTS = ContactRow8::LANES / Form::LANES;

    struct Bodies {
        V vx, vy, w, massInv;
    };

    template <SweepKind KIND>
    static void Solve(const ContactStretch& stretch) {
        const V share = Form::Fill(stretch.share);
        V squares[PARTS];
        for (uint32_t p = 0; p < PARTS; ++p) squares[p] = Form::Load(stretch.squares + p * Form::LANES);
        ContactTrend8* trend = stretch.trends;
        for (ContactRow8* row = stretch.groups; row != stretch.groups + stretch.count; ++row) {
            for (uint32_t p = 0; p < PARTS; ++p) {
                const uint32_t lane = p * Form::LANES;
                if (p > 0 && row->IsUnused(lane)) break;
                SolvePart<KIND>(*row, trend, lane, share, stretch.bodies, squares[p]);
            }
            if constexpr (KIND != SweepKind::PLAIN) ++trend;
        }
        for (uint32_t p = 0; p < PARTS; ++p) Form::Store(stretch.squares + p * Form::LANES, squares[p]);
    }

    template <SweepKind KIND>
    static void SolvePart(ContactRow8& row, ContactTrend8* trend, uint32_t lane, V share, SolverBody* bodies,
                          V& squares) {
        const auto load = [lane](const math::real* numbers) { return Form::Load(numbers + lane); };
        const auto store = [lane](math::real* numbers, V value) { Form::Store(numbers + lane, value); };
        Bodies b0, b1;
        Form::LoadBodies(bodies, row.body0 + lane, b0);
        Form::LoadBodies(bodies, row.body1 + lane, b1);
        const V r0x = load(row.r0x), r0y = load(row.r0y);
        const V r1x = load(row.r1x), r1y = load(row.r1y);
        const V nx = load(row.normalX), ny = load(row.normalY);
        const V tx = -ny, ty = nx;
        const V cx = (b1.vx - r1y * b1.w) - (b0.vx - r0y * b0.w);
        const V cy = (b1.vy + r1x * b1.w) - (b0.vy + r0x * b0.w);

        V normalImpulse = load(row.normalImpulse);
        V tangentImpulse = load(row.tangentImpulse);
        if constexpr (KIND != SweepKind::PLAIN) {
            const V normalStep = load(trend->normalTrend) * share;
            const V tangentStep = load(trend->tangentTrend) * share;
            normalImpulse = normalImpulse + normalStep;
            tangentImpulse = tangentImpulse + tangentStep;
            if constexpr (KIND == SweepKind::WITH_TREND) {
                store(trend->normalTrend, normalStep + load(trend->normalDelta));
                store(trend->tangentTrend, tangentStep + load(trend->tangentDelta));
            }
        }
        V dn = load(row.normalTarget) - (cx * nx + cy * ny) * load(row.normalMass);
        const V x = Form::Max(dn + normalImpulse, Form::Zero());
        dn = x - normalImpulse;
        const V limit = Form::Max(load(row.friction) * x, Form::Zero());
        V dt = load(row.tangentTarget) - (cx * tx + cy * ty) * load(row.tangentMass);
        const V y = Form::Min(Form::Max(dt + tangentImpulse, -limit), limit);
        dt = y - tangentImpulse;
        store(row.normalImpulse, normalImpulse + dn);
        store(row.tangentImpulse, tangentImpulse + dt);
        if constexpr (KIND == SweepKind::WITH_TREND) {
            store(trend->normalDelta, dn);
            store(trend->tangentDelta, dt);
            squares = squares + (dn * dn + dt * dt);
        }

        const V px = nx * dn + tx * dt;
        const V py = ny * dn + ty * dt;
        b0.vx = b0.vx - px * b0.massInv;
        b0.vy = b0.vy - py * b0.massInv;
        b0.w = b0.w - load(row.inertiaInv0) * (r0x * py - r0y * px);
        b1.vx = b1.vx + px * b1.massInv;
        b1.vy = b1.vy + py * b1.massInv;
        b1.w = b1.w + load(row.inertiaInv1) * (r1x * py - r1y * px);
        Form::StoreBodies(bodies, row.body0 + lane, b0);
        Form::StoreBodies(bodies, row.body1 + lane, b1);
    }

  public:
    static constexpr ContactSweeps TABLE = {&Solve<SweepKind::PLAIN>, &Solve<SweepKind::WITH_TREND>,
                                            &Solve<SweepKind::LAST>};
};

}  // namespace physics
