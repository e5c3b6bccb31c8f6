// How steady the world is at the settings it ships with: what a minute does to scenes that ought to stand,
// hang or stop. Runs on request only: vexa-bench --benchmark_filter=steady.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"

namespace bench {

using math::Vec2;
using physics::BodyPtr;

namespace {

constexpr float BOX = 0.4f;      // m
constexpr float MINUTE = 60;     // s
constexpr float GRAVITY = 9.8f;  // m/s^2

// The one simulation, cleared, with its defaults.
class SteadyWorld {
  public:
    SteadyWorld() : m_sim(physics::Simulation::Instance()) {
        m_sim.Clear();
        const auto reset = [](const auto& attribute) { attribute->Set(attribute->GetDefault()); };
        reset(m_sim.m_timeDelta);
        reset(m_sim.m_solveIter);
        reset(m_sim.m_gravity);
        reset(m_sim.m_airFrictionOn);
        m_sim.m_running->Set(true);
    }
    ~SteadyWorld() { m_sim.Clear(); }

    BodyPtr Add(const physics::GeomPtr& geom, float density = 2) {
        geom->m_density = density;
        geom->m_restitution = 0;
        const BodyPtr body = new physics::Body(geom);
        m_sim.AddBody(body);
        return body;
    }
    BodyPtr AddGround(Vec2 normal = {0, 1}) { return Add(new physics::Plane(normal, 0)); }
    BodyPtr AddBox(Vec2 center, Vec2 half, float density = 2) {
        const Vec2 min = center - half, max = center + half;
        return Add(physics::GeomPtr(physics::MakeBoxPolygon(min.x, min.y, max.x, max.y)), density);
    }
    void Pin(const BodyPtr& a, const BodyPtr& b, Vec2 point) {
        m_sim.AddConstraint(new physics::Hinge(a->GetParts()[0].geom, b->GetParts()[0].geom, point));
    }
    // Steps through `seconds`, looking after each.
    template <class F>
    void Run(float seconds, F look) {
        const long steps = std::lround(seconds / m_sim.m_timeDelta->Get());
        for (long i = 0; i < steps; ++i) {
            m_sim.Step(true);
            look();
        }
    }
    // The widest gap of all pins and their mean.
    std::pair<double, double> MeasureGaps() const {
        double widest = 0, sum = 0;
        for (const physics::HingePtr& hinge : m_sim.GetHinges()) {
            const double gap = math::Length(hinge->GetWorldAnchor(1) - hinge->GetWorldAnchor(0));
            widest = std::max(widest, std::isfinite(gap) ? gap : 1e9);
            sum += std::isfinite(gap) ? gap : 1e9;
        }
        return {widest, sum / static_cast<double>(m_sim.GetHinges().size())};
    }

    physics::Simulation& m_sim;
};

struct Sway {
    void Look(const std::vector<BodyPtr>& bodies, const std::vector<Vec2>& start) {
        for (size_t i = 0; i < bodies.size(); ++i) {
            const Vec2 move = bodies[i]->m_pos - start[i];
            most = std::max<double>(most, std::fabs(move.x));
            drop = std::max<double>(drop, std::fabs(move.y));
        }
    }
    double most = 0;  // m sideways
    double drop = 0;  // m up or down
};

std::vector<Vec2> PlacesOf(const std::vector<BodyPtr>& bodies) {
    std::vector<Vec2> places;
    for (const BodyPtr& body : bodies) places.push_back(body->m_pos);
    return places;
}

void ReportSway(benchmark::State& state, SteadyWorld& world, const std::vector<BodyPtr>& bodies) {
    const std::vector<Vec2> start = PlacesOf(bodies);
    Sway sway;
    world.Run(MINUTE, [&] { sway.Look(bodies, start); });
    state.counters["sway_mm"] = sway.most * 1000;
    state.counters["stands"] = sway.drop < 0.5 * BOX;
}

void Stack(benchmark::State& state, uint32_t seed) {
    for (auto _ : state) {
        SteadyWorld world;
        world.AddGround();
        std::mt19937 random(seed);
        std::vector<BodyPtr> boxes;
        for (int i = 0; i < 20; ++i) {
            const float jitter = 0.0005f * (static_cast<float>(random() / 2147483648.0) - 1);
            boxes.push_back(world.AddBox({jitter, (static_cast<float>(i) + 0.5f) * BOX}, {BOX / 2, BOX / 2}));
        }
        ReportSway(state, world, boxes);
    }
}

void Pyramid(benchmark::State& state, int rows) {
    for (auto _ : state) {
        SteadyWorld world;
        world.AddGround();
        std::vector<BodyPtr> boxes;
        for (int row = 0; row < rows; ++row) {
            for (int i = 0; i < rows - row; ++i) {
                const float x =
                    (static_cast<float>(i) - 0.5f * static_cast<float>(rows - row - 1)) * BOX * 1.1f;
                boxes.push_back(
                    world.AddBox({x, (static_cast<float>(row) + 0.5f) * BOX}, {BOX / 2, BOX / 2}));
            }
        }
        ReportSway(state, world, boxes);
    }
}

void HeavyOnLight(benchmark::State& state) {
    for (auto _ : state) {
        SteadyWorld world;
        world.AddGround();
        std::vector<BodyPtr> boxes;
        for (int i = 0; i < 5; ++i) {
            boxes.push_back(world.AddBox({0, (static_cast<float>(i) + 0.5f) * BOX}, {BOX / 2, BOX / 2},
                                         i == 4 ? 200.0f : 2.0f));
        }
        ReportSway(state, world, boxes);
    }
}

// Links of 0.2 m hanging straight down, with a ball of 100 times a link's mass at the end.
void Chain(benchmark::State& state, float kick) {
    for (auto _ : state) {
        constexpr float LENGTH = 0.2f;
        SteadyWorld world;
        BodyPtr last = world.m_sim.GetWorldBody();
        for (int i = 0; i < 100; ++i) {
            const float top = -LENGTH * static_cast<float>(i);
            const BodyPtr link = world.AddBox({0, top - LENGTH / 2}, {0.025f, LENGTH / 2});
            world.Pin(last, link, {0, top});
            last = link;
        }
        const float radius = 0.3f;
        const float end = -LENGTH * 100;
        const BodyPtr load = world.Add(new physics::Circle(radius, {0, end - radius}),
                                       100 * last->m_mass / (math::PI * radius * radius));
        world.Pin(last, load, {0, end});
        load->m_vel = {kick, 0};
        double mean = 0, widest = 0;
        world.Run(MINUTE, [&] {
            const auto gaps = world.MeasureGaps();
            widest = std::max(widest, gaps.first);
            mean = std::max(mean, gaps.second);
        });
        state.counters["mean_gap_mm"] = mean * 1000;
        state.counters["widest_gap_mm"] = widest * 1000;
        state.counters["end_gap_mm"] = world.MeasureGaps().second * 1000;
    }
}

// The first second is for finding its place.
void Slope(benchmark::State& state) {
    for (auto _ : state) {
        constexpr float ANGLE = 20 * math::PI / 180;
        const Vec2 normal(-std::sin(ANGLE), std::cos(ANGLE));
        SteadyWorld world;
        world.AddGround(normal);
        const BodyPtr box = world.AddBox({0, 0}, {BOX / 2, BOX / 2});
        box->m_angle = ANGLE;
        box->m_pos = normal * (BOX / 2);
        box->UpdateGeoms();
        world.Run(1, [] {});
        const Vec2 start = box->m_pos;
        world.Run(MINUTE, [] {});
        state.counters["creep_mm"] = 1000 * math::Length(box->m_pos - start);
    }
}

// Let go horizontally, without air; energy against the lowest point.
void Pendulum(benchmark::State& state) {
    for (auto _ : state) {
        SteadyWorld world;
        world.m_sim.m_airFrictionOn->Set(false);
        const bool buoyancy = world.m_sim.m_airBuoyancy->Get();
        world.m_sim.m_airBuoyancy->Set(false);
        const BodyPtr bob = world.Add(new physics::Circle(0.1f, {1, 0}));
        world.Pin(world.m_sim.GetWorldBody(), bob, {0, 0});
        double widest = 0;
        world.Run(MINUTE, [&] { widest = std::max(widest, world.MeasureGaps().first); });
        const float energy = 0.5f * bob->m_mass * math::LengthSquared(bob->m_vel) +
                             0.5f * bob->m_inertia * bob->m_angVel * bob->m_angVel +
                             bob->m_mass * GRAVITY * bob->m_pos.y;
        state.counters["lost_percent"] = -100 * energy / (bob->m_mass * GRAVITY);
        state.counters["pin_mm"] = 1000 * widest;
        world.m_sim.m_airBuoyancy->Set(buoyancy);
    }
}

// Thrown at a wall of 0.1 m that stands fast, from many distances and heights.
void FastBall(benchmark::State& state, float speed) {
    constexpr int TRIES = 200;
    for (auto _ : state) {
        int passed = 0;
        std::mt19937 random(7);
        for (int i = 0; i < TRIES; ++i) {
            SteadyWorld world;
            const BodyPtr wall = world.AddBox({0, 0}, {0.05f, 2});
            wall->SetHeld(true);
            const auto draw = [&] { return static_cast<float>(random() / 4294967296.0); };
            const BodyPtr ball = world.Add(new physics::Circle(0.05f, {-1.5f - draw(), draw()}));
            ball->m_vel = {speed, 0};
            world.Run(1, [] {});
            passed += ball->m_pos.x > 0;
        }
        state.counters["passed"] = passed;
    }
}

void Register(const std::string& name, const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark(("steady/" + name).c_str(), run)->Iterations(1)->Unit(benchmark::kSecond);
}

const bool s_isRegistered = [] {
    for (uint32_t seed = 1; seed <= 6; ++seed) {
        Register("stack 20, seed " + std::to_string(seed), [seed](auto& state) { Stack(state, seed); });
    }
    Register("pyramid 20", [](auto& state) { Pyramid(state, 20); });
    Register("heavy on light", HeavyOnLight);
    Register("chain 100, hanging", [](auto& state) { Chain(state, 0); });
    Register("chain 100, kicked", [](auto& state) { Chain(state, 5); });
    Register("slope", Slope);
    Register("pendulum", Pendulum);
    Register("ball at 20", [](auto& state) { FastBall(state, 20); });
    Register("ball at 60", [](auto& state) { FastBall(state, 60); });
    return true;
}();

}  // namespace

}  // namespace bench
