#pragma once

#include <string>
#include <vector>

#include "math/Vector.h"

// Rigid scenes that every engine can build.
namespace bench {

constexpr float TIME_STEP = 0.01f;
constexpr int SWEEPS = 30;
constexpr float DENSITY = 2;
constexpr float FRICTION = 0.5f;

struct Shape {
    enum Kind { CIRCLE, BOX, POLYGON } kind;
    float radius;                   // of a circle
    math::Vec2 half;                // of a box
    std::vector<math::Vec2> verts;  // of a convex polygon of up to 8 corners, counter-clockwise
    math::Vec2 pos;
    math::Vec2 vel;
};

// A plane with n . p + d = 0, solid on the negative side.
struct Wall {
    math::Vec2 normal;
    float d;
};

// Holds two shapes together; they do not collide.
struct Pin {
    int first;   // index of the shape, or -1 for the fixed world
    int second;  // index of the shape
    math::Vec2 point;
};

struct Scene {
    std::vector<Shape> shapes;
    std::vector<Pin> pins;
    std::vector<Wall> walls;
    math::Vec2 gravity{0, -9.8f};
    float restitution = 0;
    int settleSteps = 0;  // before anything is measured
};

Scene MakePile(int circles);              // circles of radius 0.1 in a box of walls
Scene MakePyramid(int rows);              // boxes of 0.4 m
Scene MakeStack(int boxes);               // boxes of 0.4 m
Scene MakeSparse(int bodies);             // circles in free flight
Scene MakeMixed(int shapes);              // polygons, circles and boxes in a box of walls
Scene MakeChain(int links, bool swings);  // links of 0.2 m that hang from the world
Scene MakeScene(const std::string& name, int size);

}  // namespace bench
