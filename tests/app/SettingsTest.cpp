#include "support/Settings.h"

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/windows/SettingsWindow.h"
#include "gui/GUI.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace {

class SettingsTest : public test::AppGUIFixture {
  protected:
    static void SetUpTestSuite() {
        for (script::Reflected* const owner : GetOwners()) script::Reflected::AddToRoot(owner);
    }
    static void TearDownTestSuite() {
        script::Closure& root = *script::Parser::Instance().GetRootClosure();
        for (script::Reflected* const owner : GetOwners()) root.RemoveVariable(owner->GetReflectedName());
    }

  private:
    static std::vector<script::Reflected*> GetOwners() {
        return {&App(), &gui::GUI::Instance(), &physics::Simulation::Instance(), &physics::SPH::Instance()};
    }
};

TEST_F(SettingsTest, AllThereAreKeepWhatTheyAreGiven) {
    const std::vector<app::Setting> settings = app::FindSettings();
    EXPECT_GT(settings.size(), 100u);
    for (const app::Setting& setting : settings) {
        SCOPED_TRACE(setting.m_object);
        test::CheckSetting(*setting.m_attrib);
    }
}

}  // namespace
