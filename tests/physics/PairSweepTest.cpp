#include "physics/PairSweep.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "Shapes.h"

namespace physics {
namespace {

struct Box {
    float minX, minY, maxX, maxY;
};
using PairList = std::vector<std::pair<size_t, size_t>>;

PairList FindAll(const std::vector<Box>& boxes) {
    PairList pairs;
    for (size_t i = 0; i < boxes.size(); ++i) {
        for (size_t j = i + 1; j < boxes.size(); ++j) {
            const Box a = boxes[i], b = boxes[j];
            if (a.minX <= b.maxX && b.minX <= a.maxX && a.minY <= b.maxY && b.minY <= a.maxY) {
                pairs.push_back({i, j});
            }
        }
    }
    return pairs;
}

PairList Sweep(PairSweep& sweep, const std::vector<Box>& boxes) {
    sweep.Clear();
    for (const Box& b : boxes) sweep.Add(b.minX, b.minY, b.maxX, b.maxY);
    sweep.FindPairs();
    PairList pairs;
    for (size_t i = 0; i < boxes.size(); ++i) {
        for (const uint32_t* p = sweep.PartnersBegin(i); p != sweep.PartnersEnd(i); ++p)
            pairs.push_back({i, *p});
    }
    return pairs;
}

std::vector<Box> Scatter(test::Random& random, size_t count, float width, float height) {
    std::vector<Box> boxes;
    for (size_t i = 0; i < count; ++i) {
        const float x = test::Uniform(random, 0, width), y = test::Uniform(random, 0, height);
        const float size = i % 50 == 0 ? 30 : test::Uniform(random, 0, 1);
        boxes.push_back({x, y, x + size, y + size});
    }
    return boxes;
}

TEST(PairSweep, FindsWhatBruteForceFinds) {
    test::Random random(5);
    PairSweep sweep;
    for (const size_t count : {0, 1, 2, 15, 16, 17, 100, 300}) {
        for (const float width : {3.0f, 30.0f, 300.0f}) {
            const std::vector<Box> boxes = Scatter(random, count, width, 900 / width);
            EXPECT_EQ(Sweep(sweep, boxes), FindAll(boxes)) << count << " boxes, width " << width;
        }
    }
}

TEST(PairSweep, FollowsMovingBoxes) {
    test::Random random(6);
    PairSweep sweep;
    std::vector<Box> boxes = Scatter(random, 200, 40, 40);
    for (int step = 0; step < 50; ++step) {
        for (Box& b : boxes) {
            const float x = test::Uniform(random, -1, 1), y = test::Uniform(random, -3, 3);
            b = {b.minX + x, b.minY + y, b.maxX + x, b.maxY + y};
        }
        ASSERT_EQ(Sweep(sweep, boxes), FindAll(boxes)) << "step " << step;
    }
}

TEST(PairSweep, TouchingAndEqualBoxesOverlap) {
    PairSweep sweep;
    EXPECT_EQ(Sweep(sweep, {{0, 0, 1, 1}, {1, 1, 2, 2}, {1.1f, 0, 2, 0.9f}}), (PairList{{0, 1}}));
    const std::vector<Box> heap(40, Box{1, 1, 2, 2});
    EXPECT_EQ(Sweep(sweep, heap).size(), 40u * 39 / 2);
}

TEST(PairSweep, NaNAmongTheBoxesHidesNone) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    test::Random random(8);
    std::vector<Box> boxes = Scatter(random, 100, 10, 10);
    for (size_t i = 0; i < boxes.size(); i += 7) boxes[i].minX = nan;
    for (size_t i = 3; i < boxes.size(); i += 11) boxes[i].maxY = nan;
    PairSweep sweep;
    EXPECT_EQ(Sweep(sweep, boxes), FindAll(boxes));
}

TEST(PairSweep, EndlessBoxesOverlapAll) {
    const float inf = std::numeric_limits<float>::infinity();
    const std::vector<Box> boxes = {{0, 0, 1, 1}, {-inf, -inf, inf, inf}, {5, 5, 6, 6}};
    PairSweep sweep;
    EXPECT_EQ(Sweep(sweep, boxes), FindAll(boxes));
}

}  // namespace
}  // namespace physics
