#pragma once

#include <gtest/gtest.h>

#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/history/Undoer.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "support/LogCapture.h"

namespace test {

// An empty scene in a view of 800 by 600, the history empty, the simulation stopped, time standing at 100 s.
class SceneFixture : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static app::App& GetApp() { return app::App::Instance(); }
    static app::Scene& GetScene() { return GetApp().GetScene(); }
    static app::View& GetView() { return GetApp().GetView(); }
    static physics::Simulation& GetSim() { return physics::Simulation::Instance(); }
    static app::Undoer& GetUndoer() { return app::Undoer::Instance(); }

    static app::CircleEntityPtr AddCircle(math::Vec2 pos, float radius = 0.5f);
    static app::PolyEntityPtr AddBox(math::Vec2 min, math::Vec2 max);
    static app::PolyEntityPtr AddTriangle(math::Vec2 pos);
    static app::PlaneEntityPtr AddPlane(math::Vec2 normal, float offset);  // fixed to the world
    // As the tools of the same names make them at that point.
    static app::HingeEntityPtr AddHinge(math::Vec2 pos);
    static app::FixJointEntityPtr AddFixJoint(math::Vec2 pos);
    static app::SpringEntityPtr AddSpring(math::Vec2 from, math::Vec2 to);
    // Makes one body of the shapes of both.
    static void Join(const app::GeomEntity& a, const app::GeomEntity& b);

    static void RunFor(int frames, float dt = 0.01f);  // of App::Update, the clock moving along
    static void AdvanceClock(double seconds);

    // The scene as it would be saved.
    static String Save();
    static void Load(const String& text);  // into the empty scene
    // Everything that undo has to bring back.
    static String Describe();
};

}  // namespace test
