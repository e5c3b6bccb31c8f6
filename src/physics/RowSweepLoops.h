#pragma once

#include "physics/RowGroups.h"
#include "physics/RowSweeps.h"

namespace physics {

// SolveContactRows, Hinge::Calc and ApplyImpulsePair, operation by operation, for several contacts or hinges
// side by side; and, in a sweep with a trend, the step along it that is still to be made.
//
// A form tells how many, and has the type of as many floats: `V` with + - * and the sign, Load, Store, Fill,
// Zero, Max and Min (as those of std::), and Swap, which turns bodies' velocities and inverse masses into
// one V of each and back.
template <class Form>
class RowSweepLoops {
    using V = typename Form::V;
    static constexpr uint32_t PARTS = LANES / Form::LANES;

    struct Bodies {
        V vx, vy, w, massInv;
    };

    template <SweepKind KIND, class Row, class Trend>
    static void Solve(const RowStretch<Row, Trend>& stretch) {
        const V share = Form::Fill(stretch.share);
        V squares[PARTS];
        for (uint32_t p = 0; p < PARTS; ++p) squares[p] = Form::Load(stretch.squares + p * Form::LANES);
        Trend* trend = stretch.trends;
        for (Row* row = stretch.groups; row != stretch.groups + stretch.count; ++row) {
            for (uint32_t p = 0; p < PARTS; ++p) {
                const uint32_t lane = p * Form::LANES;
                if (p > 0 && row->IsUnused(lane)) break;
                SolvePart<KIND>(Part<Row, Trend>{*row, trend, lane, share, stretch.motions}, squares[p]);
            }
            if constexpr (KIND != SweepKind::PLAIN) ++trend;
        }
        for (uint32_t p = 0; p < PARTS; ++p) Form::Store(stretch.squares + p * Form::LANES, squares[p]);
    }

    // The lanes of a group that are solved together.
    template <class Row, class Trend>
    struct Part {
        Row& row;
        Trend* trend;
        uint32_t lane;
        V share;
        math::real* motions;

        V Load(const math::real* numbers) const { return Form::Load(numbers + lane); }
        void Store(math::real* numbers, V value) const { Form::Store(numbers + lane, value); }
    };

    // The bodies at both ends of some rows, and the rows' arms.
    template <class Row>
    struct Ends {
        template <class P>
        explicit Ends(const P& part) {
            Form::LoadBodies(part.motions, part.row.body0 + part.lane, b0);
            Form::LoadBodies(part.motions, part.row.body1 + part.lane, b1);
            r0x = part.Load(part.row.r0x);
            r0y = part.Load(part.row.r0y);
            r1x = part.Load(part.row.r1x);
            r1y = part.Load(part.row.r1y);
        }
        // The velocity changes at the rows' points, body 1 less body 0.
        V GetChangeX() const { return (b1.vx - r1y * b1.w) - (b0.vx - r0y * b0.w); }
        V GetChangeY() const { return (b1.vy + r1x * b1.w) - (b0.vy + r0x * b0.w); }

        template <class P>
        void Apply(const P& part, V px, V py) {
            b0.vx = b0.vx - px * b0.massInv;
            b0.vy = b0.vy - py * b0.massInv;
            b0.w = b0.w - part.Load(part.row.inertiaInv0) * (r0x * py - r0y * px);
            b1.vx = b1.vx + px * b1.massInv;
            b1.vy = b1.vy + py * b1.massInv;
            b1.w = b1.w + part.Load(part.row.inertiaInv1) * (r1x * py - r1y * px);
            Form::StoreBodies(part.motions, part.row.body0 + part.lane, b0);
            Form::StoreBodies(part.motions, part.row.body1 + part.lane, b1);
        }

        Bodies b0, b1;
        V r0x, r0y, r1x, r1y;
    };

    // The impulse after the step along its trend that is due.
    template <SweepKind KIND, class P>
    static V Follow(const P& part, V impulse, math::real* trend, const math::real* delta) {
        const V step = part.Load(trend) * part.share;
        if constexpr (KIND == SweepKind::WITH_TREND) part.Store(trend, step + part.Load(delta));
        return impulse + step;
    }

    template <SweepKind KIND>
    static void SolvePart(const Part<ContactRow8, ContactTrend8>& part, V& squares) {
        ContactRow8& row = part.row;
        Ends<ContactRow8> ends(part);
        const V nx = part.Load(row.normalX), ny = part.Load(row.normalY);
        const V tx = -ny, ty = nx;
        const V cx = ends.GetChangeX(), cy = ends.GetChangeY();
        V normalImpulse = part.Load(row.normalImpulse);
        V tangentImpulse = part.Load(row.tangentImpulse);
        if constexpr (KIND != SweepKind::PLAIN) {
            ContactTrend8& trend = *part.trend;
            normalImpulse = Follow<KIND>(part, normalImpulse, trend.normalTrend, trend.normalDelta);
            tangentImpulse = Follow<KIND>(part, tangentImpulse, trend.tangentTrend, trend.tangentDelta);
        }
        V dn = part.Load(row.normalTarget) - (cx * nx + cy * ny) * part.Load(row.normalMass);
        const V x = Form::Max(dn + normalImpulse, Form::Zero());
        dn = x - normalImpulse;
        const V limit = Form::Max(part.Load(row.friction) * x, Form::Zero());
        V dt = part.Load(row.tangentTarget) - (cx * tx + cy * ty) * part.Load(row.tangentMass);
        const V y = Form::Min(Form::Max(dt + tangentImpulse, -limit), limit);
        dt = y - tangentImpulse;
        part.Store(row.normalImpulse, normalImpulse + dn);
        part.Store(row.tangentImpulse, tangentImpulse + dt);
        if constexpr (KIND == SweepKind::WITH_TREND) {
            part.Store(part.trend->normalDelta, dn);
            part.Store(part.trend->tangentDelta, dt);
            squares = squares + (dn * dn + dt * dt);
        }
        ends.Apply(part, nx * dn + tx * dt, ny * dn + ty * dt);
    }

    template <SweepKind KIND>
    static void SolvePart(const Part<HingeRow8, HingeTrend8>& part, V& squares) {
        HingeRow8& row = part.row;
        Ends<HingeRow8> ends(part);
        const V ex = part.Load(row.targetX) - ends.GetChangeX();
        const V ey = part.Load(row.targetY) - ends.GetChangeY();
        const V dx = part.Load(row.k00) * ex + part.Load(row.k01) * ey;
        const V dy = part.Load(row.k10) * ex + part.Load(row.k11) * ey;
        V impulseX = part.Load(row.impulseX);
        V impulseY = part.Load(row.impulseY);
        if constexpr (KIND != SweepKind::PLAIN) {
            HingeTrend8& trend = *part.trend;
            impulseX = Follow<KIND>(part, impulseX, trend.trendX, trend.deltaX);
            impulseY = Follow<KIND>(part, impulseY, trend.trendY, trend.deltaY);
        }
        part.Store(row.impulseX, impulseX + dx);
        part.Store(row.impulseY, impulseY + dy);
        if constexpr (KIND == SweepKind::WITH_TREND) {
            part.Store(part.trend->deltaX, dx);
            part.Store(part.trend->deltaY, dy);
            squares = squares + (dx * dx + dy * dy);
        }
        ends.Apply(part, dx, dy);
    }

    template <SweepKind KIND>
    static constexpr auto CONTACTS = &Solve<KIND, ContactRow8, ContactTrend8>;
    template <SweepKind KIND>
    static constexpr auto HINGES = &Solve<KIND, HingeRow8, HingeTrend8>;

    // Where a body's motion has gone since `before` joins its trend, and it goes on by a share of that.
    static void FollowTrend(const MotionStretch& stretch) {
        const V share = Form::Fill(stretch.share);
        for (size_t i = 0; i < stretch.count; i += Form::LANES) {
            math::real* const motion = stretch.motions + i;
            math::real* const before = stretch.before + i;
            math::real* const trend = stretch.trends + i;
            const V now = Form::Load(motion);
            const V step = Form::Load(trend) * share;
            const V next = now + step;
            Form::Store(trend, step + (now - Form::Load(before)));
            Form::Store(motion, next);
            Form::Store(before, next);
        }
    }

  public:
    static constexpr RowSweeps TABLE = {
        {CONTACTS<SweepKind::PLAIN>, CONTACTS<SweepKind::WITH_TREND>, CONTACTS<SweepKind::LAST>},
        {HINGES<SweepKind::PLAIN>, HINGES<SweepKind::WITH_TREND>, HINGES<SweepKind::LAST>},
        &FollowTrend};
};

}  // namespace physics
