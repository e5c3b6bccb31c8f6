// What the scene side costs with a thousand entities, half of them polygons: a file read and written, one
// step of the history back, a snapshot, a frame in which nothing moves. And with a thousand outlines as a
// hand draws them, of which no two are alike: a file read, the moments that an autosave takes from the
// frames, the memory of a long history.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <ctime>

#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/files/SceneWriter.h"
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

static void FillWithDrawings() {
    constexpr int DRAWN_VERTICES = 100;
    FillScene();
    app::App::Instance().Clear();
    for (int i = 0; i < ENTITIES; ++i) {
        const Vec2 pos(static_cast<float>(i % 40), static_cast<float>(i / 40));
        math::Vec2List outline;
        for (int k = 0; k < DRAWN_VERTICES; ++k) {
            const float angle = math::TWO_PI * static_cast<float>(k) / DRAWN_VERTICES;
            const float wave =
                0.05f * std::cos(3 * angle) + 0.0001f * static_cast<float>(i) * std::sin(2 * angle);
            outline.push_back(pos + Vec2(std::cos(angle), std::sin(angle)) * (0.3f + wave));
        }
        app::App::Instance().AddEntity(new app::PolyEntity(new physics::Polygon(outline)));
    }
}

static void BenchLoadDrawings(benchmark::State& state) {
    FillWithDrawings();
    const String text = app::Serializer::Serialize(app::App::Instance().GetScene())->ToCode();
    for (auto _ : state) {
        app::App::Instance().Clear();
        app::Serializer::Deserialize(app::App::Instance().GetScene(), text);
    }
    state.counters["bytes"] = static_cast<double>(text.size());
}

// The longest of its moments, in milliseconds, besides the time of the whole.
static void BenchAutosave(benchmark::State& state) {
    constexpr double SLICE = 0.008;
    FillWithDrawings();
    const app::Scene& scene = app::App::Instance().GetScene();
    double longest = 0, first = 0;
    const auto clock = [] {
        return 1000.0 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    };  // of the CPU
    for (auto _ : state) {
        double begin = clock();
        app::SceneWriter writer(scene, "/tmp/vexa-bench.vxa");
        first = std::max(first, clock() - begin);
        for (bool isWritten = false; !isWritten;) {
            begin = clock();
            isWritten = writer.Continue(SLICE);
            longest = std::max(longest, clock() - begin);
        }
    }
    state.counters["first"] = first;
    state.counters["longest"] = std::max(first, longest);
}

// A hundred steps, each of which moves one shape.
static void BenchHistory(benchmark::State& state) {
    constexpr size_t STEPS = 100;
    FillWithDrawings();
    app::Undoer& undoer = app::Undoer::Instance();
    const app::EntityList entities = app::App::Instance().GetEntities();
    undoer.SetLimit(STEPS);
    double bytes = 0;
    for (auto _ : state) {
        undoer.Clear();
        const size_t before = mallinfo2().uordblks;
        for (size_t i = 0; i < STEPS; ++i) {
            const app::SnapshotPtr snapshot = new app::Snapshot(app::App::Instance().GetScene());
            entities[i]->BeginMove();
            entities[i]->Transform(math::RigidTransform(0, {0.01f, 0}));
            entities[i]->EndMove();
            undoer.AddRestorer(snapshot, "UndoMove");
        }
        bytes = static_cast<double>(mallinfo2().uordblks - before);
    }
    state.counters["MB"] = bytes / (1 << 20);
    undoer.Clear();
    undoer.SetLimit(app::Undoer::DEFAULT_LIMIT);
}

static const bool s_isRegistered = [] {
    const std::pair<const char*, void (*)(benchmark::State&)> rows[] = {
        {"scene/1000/load", BenchLoad},
        {"scene/1000/save", BenchSave},
        {"scene/1000/snapshot", BenchSnapshot},
        {"scene/1000/undo", BenchUndo},
        {"scene/1000/idleframe", BenchIdleFrame},
        {"scene/drawings/load", BenchLoadDrawings},
        {"scene/drawings/autosave", BenchAutosave},
        {"scene/drawings/history100", BenchHistory},
    };
    for (const auto& [name, function] : rows) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace bench
