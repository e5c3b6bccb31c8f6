#include "physics/WaterSums.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "physics/NeighborGrid.h"

namespace test {

using math::Vec2;

namespace {

constexpr float RADIUS = 0.2f;

util::VectorPOD<Vec2> MakeCloud(size_t count, float size) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> place(-size, size);
    util::VectorPOD<Vec2> points;
    for (size_t i = 0; i < count; ++i) points.push_back({place(random), place(random)});
    return points;
}

// Everything that the sums give, one behind the other.
std::vector<float> SumUp(const physics::WaterSums& sums, const physics::NeighborGrid& grid,
                         const physics::NeighborLists& lists) {
    const size_t drops = lists.GetPaddedCount(), pairs = lists.GetPlaceCount();
    std::vector<float> gradients(2 * pairs), closeness(pairs), densities(drops), weights(drops),
        changes(drops), squares(drops);
    std::vector<Vec2> vels(drops), friction(drops), surface(drops), gradientSums(drops), pushSums(drops),
        shifts(drops);
    for (size_t i = 0; i < drops; ++i) {
        vels[i] = {static_cast<float>(i % 7) - 3, static_cast<float>(i % 11) * 0.3f};
        weights[i] = static_cast<float>(i % 5) * 0.1f;
    }
    const physics::NeighborRows rows = lists.GetRows();
    EXPECT_FALSE(sums.addKernels(rows, {1 / RADIUS, 0.4f, 0.4f, 200, grid.GetSortedPoints(), gradients.data(),
                                        closeness.data(), densities.data()}));
    sums.addFriction(rows, {closeness.data(), densities.data(), vels.data(), friction.data()});
    sums.addSurface(rows, {gradients.data(), densities.data(), surface.data()});
    sums.addMotion(rows, {gradients.data(), gradients.data(), vels.data(), changes.data(), squares.data(),
                          gradientSums.data(), pushSums.data()});
    std::vector<float> all = gradients;
    all.insert(all.end(), changes.begin(), changes.end());
    const physics::PressureSums pressure = {gradients.data(),    gradients.data(), weights.data(),
                                            gradientSums.data(), pushSums.data(),  shifts.data(),
                                            changes.data()};
    sums.addChanges(rows, pressure);
    for (const std::vector<float>* part : {&closeness, &densities, &squares, &changes}) {
        all.insert(all.end(), part->begin(), part->end());
    }
    for (const std::vector<Vec2>* part : {&friction, &surface, &gradientSums, &pushSums, &shifts}) {
        for (const Vec2 v : *part) all.insert(all.end(), {v.x, v.y});
    }
    sums.addShifts(rows, pressure);
    for (const Vec2 v : shifts) all.insert(all.end(), {v.x, v.y});
    return all;
}

using Places = std::vector<uint32_t>;

// What lies in a box, near a point, and below a plane.
std::vector<Places> Keep(const physics::WaterSums& sums, const physics::NeighborGrid& grid) {
    const Vec2* const points = grid.GetSortedPoints();
    const physics::NeighborGrid::Stretch stretch = {1, static_cast<uint32_t>(grid.GetSize()) - 3};
    const auto list = [&](auto keep) {
        Places places(2 * grid.GetSize());
        places.resize(keep(places.data()));
        return places;
    };
    return {list([&](uint32_t* to) {
                return sums.keepInBox(points, stretch, {{-0.5f, -0.2f}, {0.3f, 0.6f}}, to);
            }),
            list([&](uint32_t* to) {
                return sums.keepNear(points, stretch, {0.2f, -0.1f}, 0.3f, to);
            }),
            list([&](uint32_t* to) {
                return sums.keepBelow(points, stretch, {0.6f, 0.8f, 0.1f}, 0.2f, to);
            })};
}

}  // namespace

// Wide registers give the bits of narrow ones.
TEST(WaterSums, BothFormsAgreeToTheBit) {
    const physics::WaterSums* const wide = physics::GetWideWaterSums();
    if (wide == nullptr || &physics::GetWaterSums() != wide) GTEST_SKIP() << "no wide registers here";
    for (const size_t count : {1u, 7u, 8u, 501u}) {
        physics::NeighborGrid grid;
        physics::NeighborLists lists;
        grid.Sort(MakeCloud(count, 1), RADIUS);
        lists.Build(grid, RADIUS);
        const std::vector<float> a = SumUp(physics::GetNarrowWaterSums(), grid, lists);
        const std::vector<float> b = SumUp(*wide, grid, lists);
        ASSERT_EQ(a.size(), b.size());
        EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(float)), 0) << count;
        if (count > 3) {
            EXPECT_EQ(Keep(physics::GetNarrowWaterSums(), grid), Keep(*wide, grid));
        }
    }
}

// Loose points, and crowds that are listed in another way.
TEST(NeighborLists, ListThoseThatAreNear) {
    for (const float size : {2.0f, 1.0f, 0.8f}) {
        physics::NeighborGrid grid;
        physics::NeighborLists lists;
        grid.Sort(MakeCloud(1003, size), RADIUS);
        lists.Build(grid, RADIUS);
        const physics::NeighborRows rows = lists.GetRows();
        const Vec2* const points = grid.GetSortedPoints();
        size_t pairs = 0;
        for (uint32_t i = 0; i < grid.GetSize(); ++i) {
            std::vector<uint32_t> expected, found;
            for (uint32_t j = 0; j < grid.GetSize(); ++j) {
                if (j != i && math::LengthSquared(points[j] - points[i]) < RADIUS * RADIUS)
                    expected.push_back(j);
            }
            const uint32_t group = i / 8, own = i % 8;
            for (uint32_t row = rows.begins[group]; row < rows.begins[group + 1]; ++row) {
                const uint32_t j = rows.neighbors[row * 8 + own];
                if (row - rows.begins[group] < rows.counts[i]) {
                    found.push_back(j);
                } else {
                    EXPECT_EQ(j, i) << "fills up with itself";
                }
                EXPECT_LE(j / 8, rows.reach[group]);
            }
            EXPECT_EQ(found, expected) << i;
            pairs += expected.size();
        }
        EXPECT_EQ(lists.GetPairCount(), pairs / 2);
    }
}

}  // namespace test
