#pragma once

#include "physics/Float8.h"
#include "physics/WaterSums.h"

// The loops of WaterSums for either form of eight floats. They call nothing but operations of that form; see
// Float8.h.
namespace physics {

template <class Float8>
struct WaterLoops {
    static constexpr uint32_t LANES = 8;

    struct Pair {
        Float8 x, y;
    };
    static Pair LoadRow(const float* rows, uint32_t row) {
        const float* const p = rows + size_t(row) * 2 * LANES;
        return {Float8::Load(p), Float8::Load(p + LANES)};
    }
    static Pair LoadGroup(const math::Vec2* from, uint32_t group) {
        Pair pair;
        Float8::LoadPairs(from + size_t(group) * LANES, pair.x, pair.y);
        return pair;
    }
    static Pair Gather(const math::Vec2* from, const uint32_t* places) {
        Pair pair;
        Float8::GatherPairs(from, places, pair.x, pair.y);
        return pair;
    }
    static const uint32_t* GetPlaces(const NeighborRows& lists, uint32_t row) {
        return lists.neighbors + size_t(row) * LANES;
    }

    // `choose` gives the lanes to keep of a group of points, as bits.
    template <class Choose>
    static uint32_t Keep(const math::Vec2* points, uint32_t begin, uint32_t end, uint32_t* list,
                         Choose choose) {
        uint32_t count = 0;
        for (uint32_t i = begin; i < end; i += LANES) {
            Pair point;
            Float8::LoadPairs(points + i, point.x, point.y);
            const uint32_t here = end - i < LANES ? (1u << (end - i)) - 1 : 0xFFu;
            count += Float8::StoreChosen(list + count, i, choose(point) & here);
        }
        return count;
    }

    static uint32_t KeepInBox(const math::Vec2* points, NeighborGrid::Stretch stretch,
                              const math::BoundingBox2f& box, uint32_t* list) {
        const Pair min = {Float8::Fill(box.min.x), Float8::Fill(box.min.y)};
        const Pair max = {Float8::Fill(box.max.x), Float8::Fill(box.max.y)};
        return Keep(points, stretch.begin, stretch.end, list, [&](const Pair& p) {
            return ~(MaskLess(p.x, min.x) | MaskLess(p.y, min.y) | MaskLess(max.x, p.x) |
                     MaskLess(max.y, p.y));
        });
    }

    static uint32_t KeepNear(const math::Vec2* points, NeighborGrid::Stretch stretch, math::Vec2 middle,
                             float radiusSq, uint32_t* list) {
        const Pair own = {Float8::Fill(middle.x), Float8::Fill(middle.y)};
        const Float8 limit = Float8::Fill(radiusSq);
        return Keep(points, stretch.begin, stretch.end, list, [&](const Pair& p) {
            const Float8 dx = p.x - own.x, dy = p.y - own.y;
            return MaskLess(dx * dx + dy * dy, limit);
        });
    }

    static uint32_t KeepBelow(const math::Vec2* points, NeighborGrid::Stretch stretch,
                              const math::Vec3& plane, float distance, uint32_t* list) {
        const Pair normal = {Float8::Fill(plane.x), Float8::Fill(plane.y)};
        const Float8 offset = Float8::Fill(plane.z), limit = Float8::Fill(distance);
        return Keep(points, stretch.begin, stretch.end, list,
                    [&](const Pair& p) { return MaskLess(normal.x * p.x + normal.y * p.y + offset, limit); });
    }

    static uint32_t ListNear(const math::Vec2* points, uint32_t i, const NeighborGrid::Neighborhood& near,
                             float radiusSq, uint32_t* list) {
        const NeighborGrid::Stretch stretches[] = {
            near.before, {near.column.begin, i}, {i + 1, near.column.end}, near.after};
        uint32_t count = 0;
        for (const NeighborGrid::Stretch& stretch : stretches) {
            count += KeepNear(points, stretch, points[i], radiusSq, list + count);
        }
        return count;
    }

    static bool AddKernels(const NeighborRows& lists, const KernelSums& sums) {
        Float8 same = Float8::Zero();
        for (uint32_t g = 0; g < lists.groups; ++g) same = same + AddKernelsOf(g, lists, sums);
        float lanes[LANES];
        Store(lanes, same);
        for (const float lane : lanes) {
            if (lane > 0) return true;
        }
        return false;
    }

    static Float8 AddKernelsOf(uint32_t group, const NeighborRows& lists, const KernelSums& sums) {
        constexpr float NOTHING = 1e-37f;  // m^2, of drops in one place
        const Float8 one = Float8::Fill(1), four = Float8::Fill(4);
        const Float8 weightNorm = Float8::Fill(sums.weightNorm);
        const Float8 gradientNorm = Float8::Fill(sums.gradientNorm);
        const Float8 counts = Float8::LoadWhole(lists.counts + group * LANES);
        const Pair own = LoadGroup(sums.points, group);
        Float8 density = Float8::Fill(sums.self), same = Float8::Zero();
        float k = 0;
        for (uint32_t row = lists.begins[group]; row < lists.begins[group + 1]; ++row, ++k) {
            const Pair other = Gather(sums.points, GetPlaces(lists, row));
            const Float8 dx = other.x - own.x, dy = other.y - own.y;
            const Float8 distSq = dx * dx + dy * dy;
            const Float8 q = Min(Sqrt(distSq) * Float8::Fill(sums.perRadius), one);
            const Float8 u = KeepWhereLess(one - q, Float8::Fill(k), counts);
            const Float8 u3 = u * u * u;
            const Float8 gradient = gradientNorm * u3;
            density = density + weightNorm * (u3 * u) * (one + four * q);
            same = same + KeepWhereLess(u, distSq, Float8::Fill(NOTHING));
            Store(sums.closeness + size_t(row) * LANES, u);
            Store(sums.gradients + size_t(row) * 2 * LANES, dx * gradient);
            Store(sums.gradients + size_t(row) * 2 * LANES + LANES, dy * gradient);
        }
        Store(sums.densities + group * LANES, density);
        return same;
    }

    static void AddFriction(const NeighborRows& lists, const FrictionSums& sums) {
        for (uint32_t g = 0; g < lists.groups; ++g) {
            const Pair own = LoadGroup(sums.vels, g);
            Pair sum = {Float8::Zero(), Float8::Zero()};
            for (uint32_t row = lists.begins[g]; row < lists.begins[g + 1]; ++row) {
                const uint32_t* const places = GetPlaces(lists, row);
                const Pair other = Gather(sums.vels, places);
                const Float8 share = Float8::Load(sums.closeness + size_t(row) * LANES) *
                                     Float8::Gather(sums.perDensity, places);
                sum.x = sum.x + (other.x - own.x) * share;
                sum.y = sum.y + (other.y - own.y) * share;
            }
            StorePairs(sums.sums + g * LANES, sum.x, sum.y);
        }
    }

    static void AddSurface(const NeighborRows& lists, const SurfaceSums& sums) {
        for (uint32_t g = 0; g < lists.groups; ++g) {
            const Pair sum = SumUp(g, lists, sums.gradients, sums.perDensity);
            StorePairs(sums.sums + g * LANES, sum.x, sum.y);
        }
    }

    static void AddMotion(const NeighborRows& lists, const MotionSums& sums) {
        for (uint32_t g = 0; g < lists.groups; ++g) {
            const Pair own = LoadGroup(sums.vels, g);
            Pair gradients = {Float8::Zero(), Float8::Zero()}, pushes = gradients;
            Float8 change = Float8::Zero(), square = change;
            for (uint32_t row = lists.begins[g]; row < lists.begins[g + 1]; ++row) {
                const Pair other = Gather(sums.vels, GetPlaces(lists, row));
                const Pair gradient = LoadRow(sums.gradients, row), push = LoadRow(sums.pushes, row);
                change = change + (gradient.x * (own.x - other.x) + gradient.y * (own.y - other.y));
                square = square + (gradient.x * push.x + gradient.y * push.y);
                gradients = {gradients.x + gradient.x, gradients.y + gradient.y};
                pushes = {pushes.x + push.x, pushes.y + push.y};
            }
            Store(sums.changes + g * LANES, change);
            Store(sums.squares + g * LANES, square);
            StorePairs(sums.gradientSums + g * LANES, gradients.x, gradients.y);
            StorePairs(sums.pushSums + g * LANES, pushes.x, pushes.y);
        }
    }

    // Changes need the shifts of all neighbours. They follow these as closely as that allows, so that the
    // pairs' figures are still at hand.
    static void AddChanges(const NeighborRows& lists, const PressureSums& sums) {
        uint32_t shifted = 0;
        for (uint32_t g = 0; g < lists.groups; ++g) {
            for (; shifted <= lists.reach[g]; ++shifted) AddShiftsOf(shifted, lists, sums);
            AddChangesOf(g, lists, sums);
        }
    }

    static void AddShifts(const NeighborRows& lists, const PressureSums& sums) {
        for (uint32_t g = 0; g < lists.groups; ++g) AddShiftsOf(g, lists, sums);
    }

    static void AddShiftsOf(uint32_t group, const NeighborRows& lists, const PressureSums& sums) {
        const Pair sum = SumUp(group, lists, sums.pushes, sums.weights);
        const Float8 weight = Float8::Load(sums.weights + group * LANES);
        const Pair own = LoadGroup(sums.pushSums, group);
        StorePairs(sums.shifts + group * LANES, Float8::Zero() - (sum.x + weight * own.x),
                   Float8::Zero() - (sum.y + weight * own.y));
    }

    static void AddChangesOf(uint32_t group, const NeighborRows& lists, const PressureSums& sums) {
        Float8 sum = Float8::Zero();
        for (uint32_t row = lists.begins[group]; row < lists.begins[group + 1]; ++row) {
            const Pair shift = Gather(sums.shifts, GetPlaces(lists, row));
            const Pair gradient = LoadRow(sums.gradients, row);
            sum = sum + (gradient.x * shift.x + gradient.y * shift.y);
        }
        const Pair own = LoadGroup(sums.shifts, group), gradients = LoadGroup(sums.gradientSums, group);
        Store(sums.changes + group * LANES, own.x * gradients.x + own.y * gradients.y - sum);
    }

    // The vectors of a group's pairs, each times the factor of its neighbour.
    static Pair SumUp(uint32_t group, const NeighborRows& lists, const float* vectors, const float* factors) {
        Pair sum = {Float8::Zero(), Float8::Zero()};
        for (uint32_t row = lists.begins[group]; row < lists.begins[group + 1]; ++row) {
            const Float8 factor = Float8::Gather(factors, GetPlaces(lists, row));
            const Pair vector = LoadRow(vectors, row);
            sum.x = sum.x + vector.x * factor;
            sum.y = sum.y + vector.y * factor;
        }
        return sum;
    }

    static constexpr WaterSums TABLE = {KeepInBox,   KeepNear,   KeepBelow, ListNear,   AddKernels,
                                        AddFriction, AddSurface, AddMotion, AddChanges, AddShifts};
};

}  // namespace physics
