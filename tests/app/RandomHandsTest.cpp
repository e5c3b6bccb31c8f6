#include <algorithm>
#include <map>
#include <sstream>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/Language.h"
#include "app/files/SceneLoader.h"
#include "app/files/Serializer.h"
#include "app/history/Undoer.h"
#include "app/scene/AppGUISettings.h"
#include "app/windows/SettingsWindow.h"
#include "gui/components/Button.h"
#include "gui/components/Slider.h"
#include "input/Key.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"
#include "support/Length.h"
#include "util/FileSystem.h"
#include "util/Random.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;

// What somebody does who tries everything: strokes and clicks with every tool and modifier, broken off or
// not, menus with all their rows, keys, files. The history has to bring back every moment of it.
class RandomHands : public test::AppGUIFixture {
  protected:
    void SetUp() override {
        for (const Setting& setting : FindSettings()) {
            m_settings.emplace_back(setting.m_attrib, setting.m_attrib->GetValue());
        }
        const auto note = [this] { m_fewest = std::min(m_fewest, UndoCount()); };
        Undoer::Instance().GetOnChange().Add(new util::Callback(note, m_listener));
        App().m_maxUndo->Set(1000);
        physics::Simulation::Instance().m_running->Set(false);
        physics::Simulation::Instance().m_fallLimit->Set(1e9f);  // what leaves the world is no step
    }
    void TearDown() override {
        physics::Simulation::Instance().m_fallLimit->Set(
            physics::Simulation::Instance().m_fallLimit->GetDefault());
        physics::Simulation::Instance().m_running->Set(false);
        App().m_maxUndo->Set(App().m_maxUndo->GetDefault());
        SelectTool("brush");
        for (const auto& [attrib, value] : m_settings) {
            if (attrib->GetValue()->ToCode() != value->ToCode()) attrib->SetValue(value);
        }
    }

    static void SelectTool(const String& name) { App().GetGUISettings().m_tool->Set(name); }
    // What undo has to bring back; what is selected or followed is no step of the history.
    static String Describe();
    static void Settle() { App().Update(0.01f); }

    void Act();
    void Walk(int acts);

    util::Random m_random;
    bool m_mayRun = false;           // the world, meanwhile
    std::map<size_t, String> m_was;  // the world by the number of steps in the history; empty if not known
    size_t m_fewest = 0;             // steps during the last act

  private:
    // As they were: hands get at them too, in the options for instance.
    std::vector<std::pair<script::AbstractAttribPtr, script::ObjectPtr>> m_settings;
    const util::SharedPtr<util::Pointee> m_listener = new util::Pointee;
    float In(float min, float max) { return m_random.GetUniform(min, max); }
    int Below(int n) { return m_random.GetUniformInt(0, n); }
    Vec2 Place();
    math::Vec2List Path();
    void Stroke();
    void TapWithTool();
    void UseMenu();
    void PressSomething();
    void PressKey();
    void GoThroughFile();
    static void RunForAWhile();
};

String RandomHands::Describe() {
    std::ostringstream out;
    out.precision(9);
    const EntityPtr followed = Scene().GetTrackedEntity();
    Scene().Track(EntityPtr());
    out << Serializer::Serialize(Scene())->ToCode() << "\n";
    Scene().Track(followed);
    for (const physics::BodyPtr& body : physics::Simulation::Instance().GetBodies()) {
        out << body->GetID();
        for (const float value : {body->m_pos.x, body->m_pos.y, body->m_angle, body->m_vel.x, body->m_vel.y,
                                  body->m_angVel, body->m_mass, body->m_inertia}) {
            out << " " << value;
        }
        out << "\n";
    }
    for (const physics::ParticlePtr& drop : physics::Simulation::Instance().GetParticles()) {
        out << drop->m_pos.x << " " << drop->m_pos.y << " " << drop->m_vel.x << " " << drop->m_vel.y << "\n";
    }
    return out.str();
}

// Mostly where there is something.
Vec2 RandomHands::Place() {
    const Vec2 anywhere(In(-5, 5), In(-3.8f, 3.8f));
    if (Entities().empty() || Below(3) == 0) return anywhere;
    const EntityPtr entity = Entities()[static_cast<size_t>(Below(static_cast<int>(Entities().size())))];
    const math::BoundingBox2f box = entity->GetBoundingBox();
    return box.IsFinite() ? box.GetCenter() + Vec2(In(-0.2f, 0.2f), In(-0.2f, 0.2f)) : anywhere;
}

math::Vec2List RandomHands::Path() {
    const Vec2 from = Place();
    switch (Below(3)) {
        case 0:
            return Circle(from, In(0.1f, 2), In(0.8f, 1.3f));
        case 1: {
            math::Vec2List scribble{from};
            for (int i = 0; i < 12; ++i) scribble.push_back(scribble.back() + Vec2(In(-1, 1), In(-1, 1)));
            return scribble;
        }
        default:
            return {from, Place()};
    }
}

void RandomHands::Stroke() {
    const int button = Below(4) == 0 ? Key::RightMouse : Key::LeftMouse;
    const int modifiers[] = {Key::LeftShift, Key::LeftCtrl, Key::LeftAlt};
    const int held = Below(2) == 0 ? modifiers[Below(3)] : 0;
    if (held != 0) SetModifier(held, true);
    const math::Vec2List path = Path();
    Press(path.front(), button);
    const size_t broken =
        Below(5) == 0 ? static_cast<size_t>(Below(static_cast<int>(path.size()))) : path.size();
    for (size_t i = 0; i < path.size(); ++i) {
        if (i == broken) PressKey();
        DragTo(path[i]);
        if (i % 8 == 0) Settle();
    }
    Release();
    if (held != 0) SetModifier(held, false);
}

void RandomHands::TapWithTool() {
    SelectTool(Below(2) == 0 ? "hinge" : "fixjoint");
    Click(Place(), Key::LeftMouse);
}

// But for the way to the options: their settings are those of all other tests too.
void CollectControls(const gui::ComponentPtr& parent, std::vector<gui::ComponentPtr>& found) {
    for (const gui::ComponentPtr& child : parent->GetChildren()) {
        if (child->GetKey() == "WindowsMenu") continue;
        if (util::DynamicCast<gui::AbstractButton>(child) || util::DynamicCast<gui::Slider>(child)) {
            found.push_back(child);
        }
        CollectControls(child, found);
    }
}

void RandomHands::PressSomething() {
    std::vector<gui::ComponentPtr> controls;
    CollectControls(&App(), controls);
    if (controls.empty()) return;
    const gui::ComponentPtr chosen = controls[static_cast<size_t>(Below(static_cast<int>(controls.size())))];
    if (const auto slider = util::DynamicCast<gui::Slider>(chosen)) {
        slider->FireDragStart();
        slider->SetValue(In(0, 1) * slider->GetValueAt(slider->GetSize().x));
        slider->FireDragEnd();
    } else {
        util::DynamicCast<gui::AbstractButton>(chosen)->OnPressed();
    }
}

// On a shape, the selection or the empty scene; some rows of it and of its submenus.
void RandomHands::UseMenu() {
    if (Below(3) == 0) Key('a', true);
    Click(Place(), Key::RightMouse);
    Settle();
    for (int i = 0; i < 3; ++i) {
        PressSomething();
        Settle();
    }
    Key(Key::Escape);
}

void RandomHands::PressKey() {
    const std::pair<int, bool> keys[] = {{Key::Delete, false}, {'g', true},         {'u', true},
                                         {'a', true},          {'z', true},         {'z', true},
                                         {'y', true},          {Key::Escape, false}};
    const auto& [key, ctrl] = keys[Below(8)];
    Key(key, ctrl);
}

void RandomHands::GoThroughFile() {
    const util::FileSystem& files = util::FileSystem::Instance();
    files.MakeDir(files.GetScenesDir());
    GUI().SaveSceneAs("hands.vxa", true);
    SceneLoader::Load(Scene(), View(), "hands.vxa", Below(2) == 0);
}

// As many steps each time, whatever the machine does.
void RandomHands::RunForAWhile() {
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.m_running->SetValue(script::ValueToObject(true));
    for (int i = 0; i < 5; ++i) simulation.Step(true);
    simulation.m_running->SetValue(script::ValueToObject(false));
}

void RandomHands::Act() {
    const char* const tools[] = {"spring", "chain", "box",   "circle", "plane",
                                 "drag",   "brush", "hinge", "brush"};
    switch (Below(12)) {
        case 0:
        case 1:
            return UseMenu();
        case 2:
            return PressKey();
        case 3:
            return TapWithTool();
        case 4:
            if (Entities().size() < 60) GoThroughFile();
            return;
        case 5:
            if (!m_mayRun) return;
            RunForAWhile();
            return;
        default:
            SelectTool(tools[Below(9)]);
            return Stroke();
    }
}

void RandomHands::Walk(int acts) {
    m_was[0] = Describe();
    for (int i = 0; i < acts; ++i) {
        m_fewest = UndoCount();
        Act();
        const bool hasStarted = UndoName() == "UndoSimStart";  // one of the buttons does
        if (!m_mayRun) physics::Simulation::Instance().m_running->Set(false);
        Settle();
        m_was.erase(m_was.upper_bound(m_fewest), m_was.end());
        m_was[UndoCount()] = hasStarted ? String() : Describe();
    }
    GUI().CancelTool();
    physics::Simulation::Instance().m_running->Set(false);
    Settle();
}

// While the world stands, every number of steps stands for one state of it.
TEST_F(RandomHands, EveryMomentComesBack) {
    for (int walk = 0; walk < test::GetLength(3) && !HasFailure(); ++walk) {
        SCOPED_TRACE(walk);
        m_was.clear();
        App().Clear();
        Undoer::Instance().Clear();
        Walk(40);
        const size_t steps = UndoCount();
        const auto isAsItWas = [this] {
            Settle();
            const auto was = m_was.find(UndoCount());
            if (was == m_was.end() || was->second.empty()) return;
            EXPECT_EQ(Describe(), was->second) << UndoCount() << " steps, " << UndoName();
        };
        while (UndoCount() > 0 && !HasFailure()) {
            Undoer::Instance().Undo();
            isAsItWas();
        }
        while (UndoCount() < steps && !HasFailure()) {
            Undoer::Instance().Redo();
            isAsItWas();
        }
    }
}

// With the world running in between, a step back lands where it landed before, a step forth as well. The
// first way back is the user's own: it stops at moments just before a step, which a redo does not come by
// again.
TEST_F(RandomHands, TheWayBackAndForthIsTheSameEachTime) {
    m_mayRun = true;
    for (int walk = 0; walk < test::GetLength(3) && !HasFailure(); ++walk) {
        SCOPED_TRACE(walk);
        App().Clear();
        Undoer::Instance().Clear();
        Walk(40);
        const size_t steps = UndoCount();
        std::map<size_t, String> back, forth;
        for (int round = 0; round < 3; ++round) {
            if (round == 1) back.clear();
            while (UndoCount() > 0 && !HasFailure()) {
                Undoer::Instance().Undo();
                const String now = Describe();
                EXPECT_EQ(back.emplace(UndoCount(), now).first->second, now) << UndoCount();
            }
            while (UndoCount() < steps && !HasFailure()) {
                Undoer::Instance().Redo();
                const String now = Describe();
                EXPECT_EQ(forth.emplace(UndoCount(), now).first->second, now) << UndoCount();
            }
        }
    }
}

}  // namespace
}  // namespace app
