// A polygon and its distance map beside an exact map of the same outline by brute force; and what a thousand
// distinct outlines take to load.

#include <benchmark/benchmark.h>

#include <cmath>
#include <limits>
#include <vector>

#include "math/Vector.h"
#include "physics/Polygon.h"

namespace bench {

using math::Vec2;

// A wavy loop, as a stroke of the brush would leave it.
static math::Vec2List MakeLoop(int vertices) {
    math::Vec2List loop;
    for (int i = 0; i < vertices; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / static_cast<float>(vertices);
        const float radius = 1 + 0.2f * std::sin(5 * angle);
        loop.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    return loop;
}

static void BenchConstructor(benchmark::State& state, int vertices) {
    const math::Vec2List loop = MakeLoop(vertices);
    for (auto _ : state) {
        const physics::PolygonPtr polygon = new physics::Polygon(loop);
        benchmark::DoNotOptimize(polygon->GetDistMap().GetData().data());
    }
}

// Outlines by hand: none is like another.
static void BenchLoad(benchmark::State& state, bool withMaps) {
    constexpr int POLYGONS = 1000;
    for (auto _ : state) {
        std::vector<physics::PolygonPtr> polygons;
        for (int i = 0; i < POLYGONS; ++i) {
            math::Vec2List loop = MakeLoop(100);
            loop[static_cast<size_t>(i % 100)] *= 1 + 0.0001f * static_cast<float>(i + 1);
            polygons.push_back(new physics::Polygon(loop));
            if (withMaps) benchmark::DoNotOptimize(polygons.back()->GetDistMap().GetData().data());
        }
    }
}

static float SignedDistance(const math::Vec2List& loop, Vec2 p) {
    float least = std::numeric_limits<float>::infinity();
    bool isInside = false;
    Vec2 a = loop.back();
    for (const Vec2 b : loop) {
        const Vec2 ab = b - a;
        const Vec2 ap = p - a;
        const float t = std::fmin(std::fmax(math::Dot(ap, ab) / math::Dot(ab, ab), 0.0f), 1.0f);
        least = std::fmin(least, math::LengthSquared(ap - ab * t));
        if ((a.y > p.y) != (b.y > p.y) && p.x < ab.x * (p.y - a.y) / ab.y + a.x) isInside = !isInside;
        a = b;
    }
    return isInside ? -std::sqrt(least) : std::sqrt(least);
}

static void BenchBruteForce(benchmark::State& state, int vertices) {
    constexpr int SIZE = 128;
    const math::Vec2List loop = MakeLoop(vertices);
    std::vector<float> map(SIZE * SIZE);
    for (auto _ : state) {
        for (int j = 0; j < SIZE; ++j) {
            for (int i = 0; i < SIZE; ++i) {
                const Vec2 p(-1.5f + 3.0f * static_cast<float>(i) / SIZE,
                             -1.5f + 3.0f * static_cast<float>(j) / SIZE);
                map[static_cast<size_t>(j * SIZE + i)] = SignedDistance(loop, p);
            }
        }
        benchmark::DoNotOptimize(map.data());
        benchmark::ClobberMemory();
    }
}

static const bool s_isRegistered = [] {
    for (const int vertices : {16, 100, 400}) {
        const std::string name = "polygon/" + std::to_string(vertices) + "/";
        benchmark::RegisterBenchmark((name + "vexa").c_str(), BenchConstructor, vertices)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "bruteforce").c_str(), BenchBruteForce, vertices)
            ->Unit(benchmark::kMillisecond);
    }
    for (const bool withMaps : {false, true}) {
        benchmark::RegisterBenchmark(withMaps ? "polygons/1000/touched" : "polygons/1000/loaded", BenchLoad,
                                     withMaps)
            ->Iterations(3)
            ->Unit(benchmark::kSecond);
    }
    return true;
}();

}  // namespace bench
