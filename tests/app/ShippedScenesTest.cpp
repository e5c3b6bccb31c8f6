#include <algorithm>
#include <cmath>
#include <limits>

#include "SceneFixture.h"
#include "app/drawing/SceneThumbnail.h"
#include "app/files/SceneLoader.h"
#include "physics/Particle.h"
#include "support/SourceDir.h"
#include "util/FileSystem.h"

namespace app {
namespace {

class ShippedScenes : public test::SceneFixture, public testing::WithParamInterface<const char*> {
  protected:
    // Height of the lowest body that can move.
    static float FindLowest() {
        float lowest = std::numeric_limits<float>::infinity();
        for (const physics::BodyPtr& body : GetSim().GetBodies()) {
            if (!body->IsImmovable()) lowest = std::min(lowest, body->m_pos.y);
        }
        return lowest;
    }
    static String GetPath() { return test::GetSourceDir() + "/Scenes/" + GetParam() + ".vxa"; }
};

TEST_P(ShippedScenes, AreReadWithoutComplaintAndOverlapNothing) {
    test::LogCapture log(logging::Warning | logging::CodeError | logging::DataError);
    const String text = util::FileSystem::Instance().ReadFile(GetPath());
    EXPECT_EQ(text.compare(0, 3, "// "), 0) << "tells what to look at";
    ASSERT_TRUE(SceneLoader::Load(GetScene(), GetView(), GetPath()));
    EXPECT_TRUE(log.GetLines().empty()) << testing::PrintToString(log.GetLines());
    GetSim().Step(false);
    for (const physics::ContactPtr& contact : GetSim().GetContacts()) {
        const bool water = dynamic_cast<const physics::Particle*>(contact->m_bodies[1]) != nullptr;
        if (water) continue;  // presses into its walls at rest
        EXPECT_LT(contact->m_penetration, 0.005f) << contact->m_point.x << " " << contact->m_point.y;
    }
}

TEST_P(ShippedScenes, HaveAPictureForTheGallery) {
    EXPECT_TRUE(SceneThumbnail::IsThumbnail(SceneThumbnail::GetPath(GetPath())));
}

TEST_P(ShippedScenes, LoseNothingInTenSeconds) {
    ASSERT_TRUE(SceneLoader::Load(GetScene(), GetView(), GetPath()));
    const size_t count = GetApp().GetEntities().size();
    const float lowest = FindLowest() - 10;  // what has lost its ground falls much further
    GetSim().m_running->Set(true);
    for (int i = 0; i < 1000; ++i) GetSim().Step(true);
    GetApp().Update(0);
    EXPECT_EQ(GetApp().GetEntities().size(), count);
    for (const physics::BodyPtr& body : GetSim().GetBodies()) {
        if (body->IsImmovable()) continue;
        EXPECT_LT(math::Length(body->m_vel), 20);
        EXPECT_LT(std::fabs(body->m_pos.x), 100);
        EXPECT_GT(body->m_pos.y, lowest);
    }
}

// Objects that own each other in a ring would stay for ever.
TEST_P(ShippedScenes, LeaveNothingBehind) {
    int32_t counts[2];
    for (int32_t& count : counts) {
        ASSERT_TRUE(SceneLoader::Load(GetScene(), GetView(), GetPath()));
        RunFor(3);
        GetApp().Clear();
        GetUndoer().Clear();
        count = util::Pointee::GetCount();
    }
    EXPECT_EQ(counts[0], counts[1]);
}

INSTANTIATE_TEST_SUITE_P(Scenes, ShippedScenes,
                         testing::Values("welcome", "dam", "stack", "dominoes", "pile", "slope", "newton",
                                         "car", "bridge", "catapult", "pendulums", "piston", "wrecking"),
                         [](const auto& scene) { return String(scene.param); });

}  // namespace
}  // namespace app
