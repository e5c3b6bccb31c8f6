#include "bench/Scenes.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>

namespace bench {

using math::Vec2;

// Uniform in [low, high). A generator of the standard, so that every engine gets the same numbers.
static float Draw(std::mt19937& random, float low, float high) {
    return low + (high - low) * static_cast<float>(random() / 4294967296.0);
}

static Shape MakeCircle(float radius, Vec2 pos) {
    return {Shape::CIRCLE, radius, {}, {}, pos, {}};
}

static Shape MakeBox(float halfWidth, float halfHeight, Vec2 pos) {
    return {Shape::BOX, 0, {halfWidth, halfHeight}, {}, pos, {}};
}

static Shape MakePolygon(float radius, int corners, std::mt19937& random, Vec2 pos) {
    Shape shape{Shape::POLYGON, 0, {}, {}, pos, {}};
    const float squash = Draw(random, 0.6f, 1);
    for (int i = 0; i < corners; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / static_cast<float>(corners);
        shape.verts.push_back({radius * std::cos(angle), radius * squash * std::sin(angle)});
    }
    return shape;
}

static std::vector<Wall> MakeContainer(float halfWidth) {
    return {{{0, 1}, 0}, {{1, 0}, halfWidth}, {{-1, 0}, halfWidth}};
}

Scene MakePile(int circles) {
    constexpr float RADIUS = 0.1f;
    constexpr float SPACING = 2.02f * RADIUS;
    const int columns = static_cast<int>(std::sqrt(circles * 2.0));
    Scene scene;
    std::mt19937 random(1);
    for (int i = 0; i < circles; ++i) {
        const int row = i / columns;
        const float x = (static_cast<float>(i % columns) + (row % 2) * 0.5f - 0.5f * columns) * SPACING;
        const float y = RADIUS + static_cast<float>(row) * SPACING;
        scene.shapes.push_back(MakeCircle(RADIUS, {x + Draw(random, -0.005f, 0.005f), y}));
    }
    scene.walls = MakeContainer((0.5f * static_cast<float>(columns) + 1) * SPACING);
    scene.settleSteps = 600;
    return scene;
}

Scene MakePyramid(int rows) {
    constexpr float SIZE = 0.4f;
    Scene scene;
    for (int row = 0; row < rows; ++row) {
        for (int i = 0; i < rows - row; ++i) {
            const float x = (static_cast<float>(i) - 0.5f * static_cast<float>(rows - row - 1)) * SIZE * 1.1f;
            scene.shapes.push_back(MakeBox(SIZE / 2, SIZE / 2, {x, (static_cast<float>(row) + 0.5f) * SIZE}));
        }
    }
    scene.walls = {{{0, 1}, 0}};
    scene.settleSteps = 300;
    return scene;
}

Scene MakeStack(int boxes) {
    constexpr float SIZE = 0.4f;
    Scene scene;
    for (int i = 0; i < boxes; ++i) {
        scene.shapes.push_back(MakeBox(SIZE / 2, SIZE / 2, {0, (static_cast<float>(i) + 0.5f) * SIZE}));
    }
    scene.walls = {{{0, 1}, 0}};
    scene.settleSteps = 300;
    return scene;
}

Scene MakeSparse(int bodies) {
    constexpr float RADIUS = 0.1f;
    constexpr float SPACING = 2;
    const int columns = static_cast<int>(std::sqrt(static_cast<double>(bodies)));
    Scene scene;
    std::mt19937 random(2);
    for (int i = 0; i < bodies; ++i) {
        Shape shape = MakeCircle(
            RADIUS, {static_cast<float>(i % columns) * SPACING, static_cast<float>(i / columns) * SPACING});
        shape.vel = {Draw(random, -1, 1), Draw(random, -1, 1)};
        scene.shapes.push_back(shape);
    }
    scene.gravity = {0, 0};
    scene.settleSteps = 50;
    return scene;
}

Scene MakeMixed(int shapes) {
    constexpr float SPACING = 0.7f;
    const int columns = std::max(static_cast<int>(std::sqrt(static_cast<double>(shapes))), 1);
    Scene scene;
    std::mt19937 random(3);
    for (int i = 0; i < shapes; ++i) {
        const Vec2 pos((static_cast<float>(i % columns) - 0.5f * static_cast<float>(columns - 1)) * SPACING,
                       (static_cast<float>(i / columns) + 0.6f) * SPACING);
        const float radius = Draw(random, 0.15f, 0.3f);
        if (i % 3 == 0) scene.shapes.push_back(MakeCircle(radius, pos));
        if (i % 3 == 1) scene.shapes.push_back(MakeBox(radius * 0.8f, radius * 0.6f, pos));
        if (i % 3 == 2) scene.shapes.push_back(MakePolygon(radius, 8, random, pos));
    }
    scene.walls = MakeContainer((0.5f * static_cast<float>(columns) + 0.2f) * SPACING);
    scene.settleSteps = 600;
    return scene;
}

Scene MakeChain(int links, bool swings) {
    constexpr float LENGTH = 0.2f;
    constexpr float THICKNESS = 0.05f;
    Scene scene;
    // Hangs straight down, or lies straight out and falls.
    for (int i = 0; i < links; ++i) {
        const float start = LENGTH * static_cast<float>(i), middle = start + LENGTH / 2;
        const Vec2 pos = swings ? Vec2(middle, 0) : Vec2(0, -middle);
        scene.shapes.push_back(swings ? MakeBox(LENGTH / 2, THICKNESS / 2, pos)
                                      : MakeBox(THICKNESS / 2, LENGTH / 2, pos));
        scene.pins.push_back({i - 1, i, swings ? Vec2(start, 0) : Vec2(0, -start)});
    }
    scene.settleSteps = swings ? 50 : 300;
    return scene;
}

Scene MakeScene(const std::string& name, int size) {
    if (name == "pile") return MakePile(size);
    if (name == "pyramid") return MakePyramid(size);
    if (name == "stack") return MakeStack(size);
    if (name == "sparse") return MakeSparse(size);
    if (name == "chain at rest") return MakeChain(size, false);
    if (name == "chain swinging") return MakeChain(size, true);
    if (name == "mixed") return MakeMixed(size);
    throw std::runtime_error("no scene " + name);
}

}  // namespace bench
