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

namespace app {

// An empty scene in a view of 800 by 600, the history empty, the simulation stopped, time standing at 100 s.
class World : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static App& GetApp() { return App::Instance(); }
    static Scene& GetScene() { return GetApp().GetScene(); }
    static View& GetView() { return GetApp().GetView(); }
    static physics::Simulation& GetSim() { return physics::Simulation::Instance(); }
    static Undoer& GetUndoer() { return Undoer::Instance(); }

    static CircleEntityPtr AddCircle(math::Vec2 pos, float radius = 0.5f);
    static PolyEntityPtr AddBox(math::Vec2 min, math::Vec2 max);
    static PolyEntityPtr AddTriangle(math::Vec2 pos);
    static PlaneEntityPtr AddPlane(math::Vec2 normal, float offset);  // fixed to the world
    // As the tools of the same names make them at that point.
    static HingeEntityPtr AddHinge(math::Vec2 pos);
    static FixJointEntityPtr AddFixJoint(math::Vec2 pos);
    static SpringEntityPtr AddSpring(math::Vec2 from, math::Vec2 to);
    // Makes one body of the shapes of both.
    static void Join(const GeomEntity& a, const GeomEntity& b);

    static void RunFor(int frames, float dt = 0.01f);  // of App::Update, the clock moving along
    static void AdvanceClock(double seconds);

    // The scene as it would be saved.
    static String Save();
    static void Load(const String& text);  // into the empty scene
    // Everything that undo has to bring back.
    static String Describe();
};

}  // namespace app
