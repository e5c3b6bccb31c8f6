#pragma once

#include "physics/RowGroups.h"
#include "physics/RowSweeps.h"

namespace physics {

// SolveContactRows, Hinge::Calc and ApplyImpulsePair, operation by operation, for several contacts or hinges
// side by side; and, in a sweep with a trend, the step along it that is still to be made.
//
// V is the type of as many floats: Float4 or wide::Float8.
template <class V>
class RowSweepLoops {
    static constexpr uint32_t PARTS = LANES / V::LANES;

    struct Bodies {
        V vx, vy, w, massInv;
    };

    template <SweepKind KIND, class Row, class Trend>
    static void Solve(const RowStretch<Row, Trend>& stretch) {
        const V share = V::Fill(stretch.share);
        V squares[PARTS];
        for (uint32_t p = 0; p < PARTS; ++p) squares[p] = V::Load(stretch.squares + p * V::LANES);
        Trend* trend = stretch.trends;
        for (Row* row = stretch.groups; row != stretch.groups + stretch.count; ++row) {
            for (uint32_t p = 0; p < PARTS; ++p) {
                const uint32_t lane = p * V::LANES;
                if (p > 0 && row->IsUnused(lane)) break;
                SolvePart<KIND>(Part<Row, Trend>{*row, trend, lane, share, stretch.motions}, squares[p]);
            }
            if constexpr (KIND != SweepKind::PLAIN) ++trend;
        }
        for (uint32_t p = 0; p < PARTS; ++p) Store(stretch.squares + p * V::LANES, squares[p]);
    }

    // The lanes of a group that are solved together.
    template <class Row, class Trend>
    struct Part {
        Row& row;
        Trend* trend;
        uint32_t lane;
        V share;
        math::real* motions;

        V Read(const math::real* numbers) const { return V::Load(numbers + lane); }
        void Write(math::real* numbers, V value) const { Store(numbers + lane, value); }
    };

    // The bodies at both ends of some rows, and the rows' arms.
    template <class Row>
    struct Ends {
        template <class P>
        explicit Ends(const P& part) {
            LoadRecords(part.motions, part.row.body0 + part.lane, b0.vx, b0.vy, b0.w, b0.massInv);
            LoadRecords(part.motions, part.row.body1 + part.lane, b1.vx, b1.vy, b1.w, b1.massInv);
            r0x = part.Read(part.row.r0x);
            r0y = part.Read(part.row.r0y);
            r1x = part.Read(part.row.r1x);
            r1y = part.Read(part.row.r1y);
        }
        // The velocity changes at the rows' points, body 1 less body 0.
        V GetChangeX() const { return (b1.vx - r1y * b1.w) - (b0.vx - r0y * b0.w); }
        V GetChangeY() const { return (b1.vy + r1x * b1.w) - (b0.vy + r0x * b0.w); }

        template <class P>
        void Apply(const P& part, V px, V py) {
            b0.vx = b0.vx - px * b0.massInv;
            b0.vy = b0.vy - py * b0.massInv;
            b0.w = b0.w - part.Read(part.row.inertiaInv0) * (r0x * py - r0y * px);
            b1.vx = b1.vx + px * b1.massInv;
            b1.vy = b1.vy + py * b1.massInv;
            b1.w = b1.w + part.Read(part.row.inertiaInv1) * (r1x * py - r1y * px);
            StoreRecords(part.motions, part.row.body0 + part.lane, b0.vx, b0.vy, b0.w, b0.massInv);
            StoreRecords(part.motions, part.row.body1 + part.lane, b1.vx, b1.vy, b1.w, b1.massInv);
        }

        Bodies b0, b1;
        V r0x, r0y, r1x, r1y;
    };

    // The impulse after the step along its trend that is due.
    template <SweepKind KIND, class P>
    static V Follow(const P& part, V impulse, math::real* trend, const math::real* delta) {
        const V step = part.Read(trend) * part.share;
        if constexpr (KIND == SweepKind::WITH_TREND) part.Write(trend, step + part.Read(delta));
        return impulse + step;
    }

    template <SweepKind KIND>
    static void SolvePart(const Part<ContactRow8, ContactTrend8>& part, V& squares) {
        ContactRow8& row = part.row;
        Ends<ContactRow8> ends(part);
        const V nx = part.Read(row.normalX), ny = part.Read(row.normalY);
        const V tx = -ny, ty = nx;
        const V cx = ends.GetChangeX(), cy = ends.GetChangeY();
        V normalImpulse = part.Read(row.normalImpulse);
        V tangentImpulse = part.Read(row.tangentImpulse);
        if constexpr (KIND != SweepKind::PLAIN) {
            ContactTrend8& trend = *part.trend;
            normalImpulse = Follow<KIND>(part, normalImpulse, trend.normalTrend, trend.normalDelta);
            tangentImpulse = Follow<KIND>(part, tangentImpulse, trend.tangentTrend, trend.tangentDelta);
        }
        V dn = part.Read(row.normalTarget) - (cx * nx + cy * ny) * part.Read(row.normalMass);
        const V x = Max(dn + normalImpulse, V::Zero());
        dn = x - normalImpulse;
        const V limit = Max(part.Read(row.friction) * x, V::Zero());
        V dt = part.Read(row.tangentTarget) - (cx * tx + cy * ty) * part.Read(row.tangentMass);
        const V y = Min(Max(dt + tangentImpulse, -limit), limit);
        dt = y - tangentImpulse;
        part.Write(row.normalImpulse, normalImpulse + dn);
        part.Write(row.tangentImpulse, tangentImpulse + dt);
        if constexpr (KIND == SweepKind::WITH_TREND) {
            part.Write(part.trend->normalDelta, dn);
            part.Write(part.trend->tangentDelta, dt);
            squares = squares + (dn * dn + dt * dt);
        }
        ends.Apply(part, nx * dn + tx * dt, ny * dn + ty * dt);
    }

    template <SweepKind KIND>
    static void SolvePart(const Part<HingeRow8, HingeTrend8>& part, V& squares) {
        HingeRow8& row = part.row;
        Ends<HingeRow8> ends(part);
        const V ex = part.Read(row.targetX) - ends.GetChangeX();
        const V ey = part.Read(row.targetY) - ends.GetChangeY();
        const V dx = part.Read(row.k00) * ex + part.Read(row.k01) * ey;
        const V dy = part.Read(row.k10) * ex + part.Read(row.k11) * ey;
        V impulseX = part.Read(row.impulseX);
        V impulseY = part.Read(row.impulseY);
        if constexpr (KIND != SweepKind::PLAIN) {
            HingeTrend8& trend = *part.trend;
            impulseX = Follow<KIND>(part, impulseX, trend.trendX, trend.deltaX);
            impulseY = Follow<KIND>(part, impulseY, trend.trendY, trend.deltaY);
        }
        part.Write(row.impulseX, impulseX + dx);
        part.Write(row.impulseY, impulseY + dy);
        if constexpr (KIND == SweepKind::WITH_TREND) {
            part.Write(part.trend->deltaX, dx);
            part.Write(part.trend->deltaY, dy);
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
        const V share = V::Fill(stretch.share);
        for (size_t i = 0; i < stretch.count; i += V::LANES) {
            math::real* const motion = stretch.motions + i;
            math::real* const before = stretch.before + i;
            math::real* const trend = stretch.trends + i;
            const V now = V::Load(motion);
            const V step = V::Load(trend) * share;
            const V next = now + step;
            Store(trend, step + (now - V::Load(before)));
            Store(motion, next);
            Store(before, next);
        }
    }

  public:
    static constexpr RowSweeps TABLE = {
        {CONTACTS<SweepKind::PLAIN>, CONTACTS<SweepKind::WITH_TREND>, CONTACTS<SweepKind::LAST>},
        {HINGES<SweepKind::PLAIN>, HINGES<SweepKind::WITH_TREND>, HINGES<SweepKind::LAST>},
        &FollowTrend};
};

}  // namespace physics
