#pragma once

#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "physics/NeighborLists.h"

// Sums over the neighbours of drops: where water spends its time. Equations: SPH.cpp, WaterPressure.cpp.
//
// Drops are named by their place in the grid's order. Arrays per drop are as long as the lists' padded count.
// Rows of pair figures go along with the rows of the lists: of vectors, eight x and then eight y. What fills
// up a list has figures of zero.
namespace physics {

struct KernelSums {
    math::real perRadius;     // 1 / h
    math::real self;          // kg/m^2: the drop's own share of its density
    math::real weightNorm;    // 7 m / (pi h^2)
    math::real gradientNorm;  // 140 m / (pi h^4)
    const math::Vec2* points;
    math::real* gradients;  // out, per pair: the gradient kernel times mass times the way to the neighbour
    math::real* closeness;  // out, per pair: 1 - r / h
    math::real* densities;  // out, per drop
};

// sum (v_j - v_i) closeness / rho_j
struct FrictionSums {
    const math::real* closeness;
    const math::real* perDensity;
    const math::Vec2* vels;
    math::Vec2* sums;  // out
};

// sum g / rho_j
struct SurfaceSums {
    const math::real* gradients;
    const math::real* perDensity;
    math::Vec2* sums;  // out
};

// With g the gradients and f the pushes of a drop's pairs:
struct MotionSums {
    const math::real* gradients;
    const math::real* pushes;
    const math::Vec2* vels;
    math::real* changes;       // out: sum g.(v_i - v_j)
    math::real* squares;       // out: sum g.f
    math::Vec2* gradientSums;  // out: sum g
    math::Vec2* pushSums;      // out: sum f
};

// s_i = -(sum f w_j + w_i F_i);  change_i = s_i.G_i - sum g.s_j
struct PressureSums {
    const math::real* gradients;
    const math::real* pushes;
    const math::real* weights;       // w
    const math::Vec2* gradientSums;  // G
    const math::Vec2* pushSums;      // F
    math::Vec2* shifts;              // out: s
    math::real* changes;             // out
};

struct WaterSums {
    // Write the places of a stretch of points that are in the box, closer to the middle than the radius, or
    // at less than a distance from the plane of normal x, normal y and offset; they return how many. These
    // and the next may read a group beyond the points and write so much beyond the list.
    uint32_t (*keepInBox)(const math::Vec2* points, NeighborGrid::Stretch stretch,
                          const math::BoundingBox2f& box, uint32_t* list);
    uint32_t (*keepNear)(const math::Vec2* points, NeighborGrid::Stretch stretch, math::Vec2 middle,
                         math::real radiusSq, uint32_t* list);
    uint32_t (*keepBelow)(const math::Vec2* points, NeighborGrid::Stretch stretch, const math::Vec3& plane,
                          math::real distance, uint32_t* list);
    // Lists the points closer to the point i of the cell than the radius, in rising order and without itself,
    // and tells how many.
    uint32_t (*listNear)(const math::Vec2* points, uint32_t i, const NeighborGrid::Neighborhood& near,
                         math::real radiusSq, uint32_t* list);
    // Whether any two drops lie in one place, and so have no direction apart.
    bool (*addKernels)(const NeighborRows& lists, const KernelSums& sums);
    void (*addFriction)(const NeighborRows& lists, const FrictionSums& sums);
    void (*addSurface)(const NeighborRows& lists, const SurfaceSums& sums);
    void (*addMotion)(const NeighborRows& lists, const MotionSums& sums);
    // Both shifts and changes in one walk.
    void (*addChanges)(const NeighborRows& lists, const PressureSums& sums);
    void (*addShifts)(const NeighborRows& lists, const PressureSums& sums);
};

// The same bits both: for every processor, and with registers of eight floats, null where the build has none,
// to be called where the processor has them.
const WaterSums& GetNarrowWaterSums();
const WaterSums* GetWideWaterSums();

// The fastest that this processor can run.
const WaterSums& GetWaterSums();

}  // namespace physics
