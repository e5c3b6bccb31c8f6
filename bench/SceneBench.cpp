// What the scene side costs with a thousand entities, half of them polygons: a file read and written, one
// step of the history back, a snapshot, a frame in which nothing moves.

#include <benchmark/benchmark.h>

#include <cmath>

#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/files/Serializer.h"
#include "app/history/Actions.h"
#include "app/history/Undoer.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"

namespace bench {

using math::Vec2;

constexpr int ENTITIES = 1000;
constexpr int VERTICES = 20;

static physics::PolygonPtr MakeShape(Vec2 pos) {
    math::Vec2List outline;
    for (int i = 0; i < VERTICES; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / VERTICES;
        outline.push_back(pos + Vec2(std::cos(angle), std::sin(angle)) * (0.3f + 0.1f * std::cos(3 * angle)));
    }
    return new physics::Polygon(outline);
}

static void FillScene() {
    app::App& app = app::App::Instance();
    app.SetSize(1024, 768);
    app.Clear();
    app::Undoer::Instance().Clear();
    physics::Simulation::Instance().m_running->Set(false);
    for (int i = 0; i < ENTITIES; ++i) {
        const Vec2 pos(static_cast<float>(i % 40), static_cast<float>(i / 40));
        if (i % 2 == 0) {
            app.AddEntity(new app::CircleEntity(new physics::Circle(0.4f, pos)));
        } else {
            app.AddEntity(new app::PolyEntity(MakeShape(pos)));
        }
    }
}

static void BenchSave(benchmark::State& state) {
    FillScene();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            app::Serializer::Serialize(app::App::Instance().GetScene())->ToCode().size());
}

static void BenchLoad(benchmark::State& state) {
    FillScene();
    const String text = app::Serializer::Serialize(app::App::Instance().GetScene())->ToCode();
    for (auto _ : state) {
        app::App::Instance().Clear();
        app::Serializer::Deserialize(app::App::Instance().GetScene(), text);
    }
}

static void BenchSnapshot(benchmark::State& state) {
    FillScene();
    for (auto _ : state) {
        const app::SnapshotPtr snapshot = new app::Snapshot(app::App::Instance().GetScene());
        benchmark::DoNotOptimize(snapshot.Get());
    }
}

static void BenchUndo(benchmark::State& state) {
    FillScene();
    const app::SnapshotPtr snapshot = new app::Snapshot(app::App::Instance().GetScene());
    for (auto _ : state) snapshot->Restore();
}

static void BenchIdleFrame(benchmark::State& state) {
    FillScene();
    for (auto _ : state) app::App::Instance().Update(0.01f);
}

static const bool s_isRegistered = [] {
    const std::pair<const char*, void (*)(benchmark::State&)> rows[] = {
        {"scene/1000/load", BenchLoad},           {"scene/1000/save", BenchSave},
        {"scene/1000/snapshot", BenchSnapshot},   {"scene/1000/undo", BenchUndo},
        {"scene/1000/idleframe", BenchIdleFrame},
    };
    for (const auto& [name, function] : rows) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace bench
