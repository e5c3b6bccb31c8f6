#include "app/windows/EntityPopup.h"

#include <gtest/gtest.h>

#include <cmath>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/scene/AppGUISettings.h"
#include "gui/components/Checkbox.h"
#include "gui/components/Slider.h"
#include "input/Key.h"
#include "physics/Hinge.h"
#include "physics/Simulation.h"

namespace {

using app::EntityPtr;
using gui::Key;
using math::Vec2;

// The menu by right click, its rows pressed as the user presses them.
class EntityPopupTest : public test::AppGUIFixture {
  protected:
    static gui::Window* FindPopup() { return FindTopLevel("PopupTitle"); }

    static gui::Window* FindTopLevel(const String& key) {
        for (gui::Window* const window : GetOpenWindows()) {
            if (window->GetKey() == key) return window;
        }
        return nullptr;
    }

    static gui::AbstractToggleButton::State StateOf(const String& key) {
        const auto check = util::DynamicCast<gui::AbstractToggleButton>(FindWidget(key));
        check->Update(0.01f);
        return check->GetToggleState();
    }

    static void DragSlider(const String& key, double value) {
        const auto slider = util::DynamicCast<gui::Slider>(FindWidget(key));
        ASSERT_TRUE(slider) << key;
        slider->FireDragStart();
        slider->SetValue(value);
        slider->FireDragEnd();
    }

    // Windows that have been torn off with them.
    void TearDown() override {
        Key('a', true);
        Key(Key::Delete);
        App().Update(0);
        AppGUIFixture::TearDown();
    }

    static app::GeomEntity& Shape(const EntityPtr& entity) {
        return *util::DynamicCast<app::GeomEntity>(entity);
    }
};

TEST_F(EntityPopupTest, OpensOnWhatWasClickedAndClosesAtAClickElsewhere) {
    const EntityPtr box = AddBox({0, 0});
    EXPECT_TRUE(Click({0, 0}, Key::RightMouse));
    EXPECT_TRUE(App().GetSelection().Has(box));
    ASSERT_TRUE(FindPopup());
    EXPECT_TRUE(FindWidget("Erase"));
    EXPECT_FALSE(FindWidget("ResetView"));
    Click({3, 3}, Key::LeftMouse);
    EXPECT_FALSE(FindPopup());

    Click({3, 3}, Key::RightMouse);
    EXPECT_TRUE(FindWidget("ResetView"));
    EXPECT_TRUE(FindWidget("GalleryButton"));
    EXPECT_FALSE(FindWidget("Erase"));
    EXPECT_FALSE(FindWidget("NoFollow")) << "nothing is followed";
    EXPECT_TRUE(Key(Key::Escape));
    EXPECT_FALSE(FindPopup());
}

TEST_F(EntityPopupTest, ErasesAndClones) {
    AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    PressButton("Clone");
    ASSERT_EQ(Entities().size(), 2u);
    EXPECT_EQ(UndoName(), "UndoClone");
    const float cm = View().GetCmToWorld();
    EXPECT_NEAR(PlaceOf(Entities()[1]).x, cm, 1e-4);
    EXPECT_NEAR(PlaceOf(Entities()[1]).y, -cm, 1e-4);
    EXPECT_FALSE(FindPopup());
    Click({-0.4f, 0.4f}, Key::RightMouse);
    PressButton("Erase");
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_EQ(UndoName(), "UndoErase");
}

TEST_F(EntityPopupTest, ChangesTheMaterialOfAllAndUndoesItAtOnce) {
    const EntityPtr box = AddBox({0, 0}), circle = AddCircle({3, 0});
    Shape(box).m_friction->Set(0.25f);
    Key('a', true);
    Click({0, 0}, Key::RightMouse);
    PressButton("GeomMenuButton");
    const auto friction = util::DynamicCast<gui::Slider>(FindWidget("Friction"));
    ASSERT_TRUE(friction);
    EXPECT_TRUE(std::isnan(friction->GetValue())) << "the two differ";
    DragSlider("Friction", 0.75);
    EXPECT_EQ(Shape(box).m_friction->Get(), 0.75f);
    EXPECT_EQ(Shape(circle).m_friction->Get(), 0.75f);
    EXPECT_EQ(UndoName(), "UndoSliderChange");
    Key('z', true);
    EXPECT_EQ(Shape(box).m_friction->Get(), 0.25f);
    EXPECT_EQ(Shape(circle).m_friction->Get(), 0.5f);
}

TEST_F(EntityPopupTest, AnUndoWhileASliderIsHeldUndoesWhatItHasDone) {
    const EntityPtr box = AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    PressButton("GeomMenuButton");
    const auto friction = util::DynamicCast<gui::Slider>(FindWidget("Friction"));
    gui::KeyEvent press;
    press.m_key = Key::LeftMouse;
    press.m_pressed = true;
    press.m_position = friction->ToGUI(friction->GetSize() * 0.75f);
    friction->OnKeyEvent(press);
    EXPECT_GT(Shape(box).m_friction->Get(), 0.7f);
    Key('z', true);
    EXPECT_EQ(Shape(box).m_friction->Get(), 0.5f);
    EXPECT_FALSE(friction->IsDragging());
    Key('y', true);
    EXPECT_GT(Shape(box).m_friction->Get(), 0.7f);
}

TEST_F(EntityPopupTest, ShowsMixedStatesAndMakesThemOne) {
    const EntityPtr box = AddBox({0, 0}), circle = AddCircle({3, 0});
    Shape(box).m_collideSet->Set(3);
    Key('a', true);
    Click({0, 0}, Key::RightMouse);
    PressButton("CollisionMenuButton");
    using Toggle = gui::AbstractToggleButton;
    EXPECT_EQ(StateOf("A"), Toggle::On);
    EXPECT_EQ(StateOf("B"), Toggle::Unknown);
    EXPECT_EQ(StateOf("C"), Toggle::Off);
    PressButton("B");
    EXPECT_EQ(Shape(circle).m_collideSet->Get(), 3);
    PressButton("A");
    EXPECT_EQ(Shape(box).m_collideSet->Get(), 2);
    EXPECT_EQ(Shape(circle).m_collideSet->Get(), 2);
}

TEST_F(EntityPopupTest, MakesACircleOfTheSameAreaInTheSamePlace) {
    const EntityPtr box = AddBox({0, 0}, 2);
    AddBox({5, 0});
    Shape(box).m_friction->Set(0.125f);
    const math::Vec3 color = box->GetColor();
    Click({0, 0}, Key::RightMouse);
    PressButton("GeomMenuButton");
    PressButton("Circle");
    ASSERT_EQ(Entities().size(), 2u);
    const auto circle = util::DynamicCast<app::CircleEntity>(Entities()[0]);
    ASSERT_TRUE(circle) << "it keeps its place in the drawing order";
    EXPECT_NEAR(circle->GetCircle()->GetArea(), 4, 0.01);
    EXPECT_NEAR(BodyOf(circle)->m_mass, 8, 0.05);
    EXPECT_EQ(circle->GetColor(), color);
    EXPECT_EQ(circle->m_friction->Get(), 0.125f);
    EXPECT_EQ(UndoName(), "UndoToCircle");
    Key('z', true);
    EXPECT_EQ(Entities()[0], box);
    EXPECT_NEAR(BodyOf(box)->m_mass, 8, 0.05);
}

TEST_F(EntityPopupTest, PinsAShapeInItsMiddleToWhatLiesBelow) {
    const EntityPtr below = AddBox({0.2f, 0}, 2), box = AddBox({0, 0}), above = AddCircle({0, 0}, 0.2f);
    App().GetSelection().Set({box});
    Click({0.4f, 0.4f}, Key::RightMouse);
    PressButton("GeomMenuButton");
    PressButton("CenterHinge");
    const auto hinge = util::DynamicCast<app::HingeEntity>(Entities().back());
    ASSERT_TRUE(hinge);
    EXPECT_EQ(hinge->GetEnd(0).geom, Shape(box).GetGeom());
    EXPECT_EQ(hinge->GetEnd(1).geom, Shape(below).GetGeom()) << "not what lies on top";
    EXPECT_NEAR(hinge->GetMiddle().x, 0, 1e-5);
    EXPECT_EQ(UndoName(), "UndoCenterHinge");
    Key('z', true);
    EXPECT_EQ(Entities().size(), 3u);
}

TEST_F(EntityPopupTest, WhatIsFixedToTheWorldGetsNoHingeAndLeavesNoStep) {
    AddBox({0, 0});
    GUI().SelectTool("fixjoint");
    Click({0, 0}, Key::LeftMouse);
    GUI().SelectTool("brush");
    ASSERT_EQ(UndoName(), "UndoFixate");
    Click({0.3f, 0.3f}, Key::RightMouse);
    PressButton("GeomMenuButton");
    PressButton("CenterHinge");
    EXPECT_EQ(UndoName(), "UndoFixate");
}

TEST_F(EntityPopupTest, OneMenuAtATimeUnlessItIsTornOff) {
    AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    PressButton("ChooseColor");
    PressButton("EntInfoButton");
    EXPECT_FALSE(FindTopLevel("ChooseColor"));
    gui::Window* const info = FindTopLevel("EntInfoMenu");
    ASSERT_TRUE(info);
    FindPopup()->TearOff();
    const Vec2 between = info->GetPos() - FindPopup()->GetPos();
    FindPopup()->SetPos(FindPopup()->GetPos().x, FindPopup()->GetPos().y - 30);
    App().Component::Update(0);
    EXPECT_EQ(info->GetPos() - FindPopup()->GetPos(), between) << "it goes along";
    info->TearOff();
    PressButton("ChooseColor");
    PressButton("GeomMenuButton");
    EXPECT_TRUE(FindTopLevel("EntInfoMenu"));
    EXPECT_FALSE(FindTopLevel("ChooseColor"));
    EXPECT_TRUE(FindTopLevel("GeomMenu"));
}

TEST_F(EntityPopupTest, WhatHasBeenTornOffClosesWithItsEntities) {
    AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    FindTopLevel("PopupTitle")->TearOff();
    PressButton("GeomMenuButton");
    FindTopLevel("GeomMenu")->TearOff();
    PressButton("ChooseColor");
    ASSERT_TRUE(FindTopLevel("GeomMenu") && FindTopLevel("ChooseColor"));
    Key(Key::Delete);
    App().Update(0);
    for (const char* const key : {"PopupTitle", "ChooseColor", "GeomMenu"}) {
        EXPECT_FALSE(FindTopLevel(key)) << key;
    }
}

TEST_F(EntityPopupTest, TheColourChooserFollowsTheHistory) {
    const EntityPtr box = AddBox({0, 0});
    box->SetColor({0, 0, 1});
    Click({0, 0}, Key::RightMouse);
    PressButton("ChooseColor");
    const auto hue = util::DynamicCast<gui::Slider>(FindWidget("ColorHue"));
    ASSERT_NEAR(hue->GetValue(), 240, 1e-3);
    DragSlider("ColorHue", 120);
    EXPECT_NEAR(box->GetColor().y, 1, 1e-5);
    FindTopLevel("ChooseColor")->TearOff();
    Key('z', true);
    App().Update(0);
    EXPECT_NEAR(hue->GetValue(), 240, 1e-3);
}

TEST_F(EntityPopupTest, MenusCloseWithThePopupTheyHangOn) {
    for (const bool byButton : {true, false}) {
        AddBox({0, 0});
        Click({0, 0}, Key::RightMouse);
        PressButton("GeomMenuButton");
        ASSERT_TRUE(FindTopLevel("GeomMenu"));
        if (byButton) {
            FindPopup()->Close();
        } else {
            PressButton("Liquify");
        }
        App().Update(0);
        EXPECT_FALSE(FindPopup());
        EXPECT_FALSE(FindTopLevel("GeomMenu")) << byButton;
    }
}

TEST_F(EntityPopupTest, ChangesMotorsOfAllHingesAsOneStep) {
    app::HingeEntityPtr hinges[2];
    for (int i = 0; i < 2; ++i) {
        const float x = 3.0f * i;
        AddBox({x, 0});
        GUI().SelectTool("hinge");
        Click({x, 0}, Key::LeftMouse);
        hinges[i] = util::DynamicCast<app::HingeEntity>(Entities().back());
        ASSERT_TRUE(hinges[i]);
    }
    GUI().SelectTool("brush");
    hinges[1]->m_motor->Set(true);
    App().GetSelection().Set({hinges[0], hinges[1]});
    Click({0, 0}, Key::RightMouse);
    PressButton("HingeMenuButton");
    EXPECT_EQ(StateOf("HingeMotor"), gui::AbstractToggleButton::Unknown);
    EXPECT_EQ(StateOf("HingeController"), gui::AbstractToggleButton::Off);
    PressButton("HingeMotor");
    EXPECT_TRUE(hinges[0]->m_motor->Get() && hinges[1]->m_motor->Get());
    EXPECT_TRUE(hinges[0]->GetHinge()->GetMotor());
    EXPECT_EQ(UndoName(), "UndoSliderChange");
    DragSlider("MotorSpeed", 60);
    EXPECT_NEAR(hinges[0]->m_motorSpeed->Get(), 6.2832f, 1e-3) << "a turn a second";
    PressButton("HingeController");
    EXPECT_EQ(hinges[1]->m_controller->Get(), "arrowkeys");
    Key('z', true);
    Key('z', true);
    Key('z', true);
    EXPECT_FALSE(hinges[0]->m_motor->Get());
    EXPECT_TRUE(hinges[1]->m_motor->Get());
    EXPECT_NEAR(hinges[1]->m_motorSpeed->Get(), 1.5708f, 1e-3);
    EXPECT_EQ(hinges[1]->m_controller->Get(), "");
}

TEST_F(EntityPopupTest, DissolvesChainsAndShowsThatOnlyOnLinks) {
    const EntityPtr link = AddBox({0, 0}), other = AddBox({3, 0});
    const app::ChainPtr chain = new app::Chain(0);
    chain->AddEntity(0, link);
    Click({3, 0}, Key::RightMouse);
    EXPECT_FALSE(FindWidget("NoChain"));
    Click({0, 0}, Key::RightMouse);
    PressButton("NoChain");
    EXPECT_FALSE(link->GetChain());
    EXPECT_EQ(UndoName(), "UndoDissolveChain");
    Key('z', true);
    EXPECT_EQ(link->GetChain(), chain);
}

TEST_F(EntityPopupTest, TurnsShapesIntoWater) {
    AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    PressButton("GeomMenuButton");
    PressButton("Liquify");
    EXPECT_TRUE(Entities().empty());
    EXPECT_GT(physics::Simulation::Instance().GetParticles().size(), 10u);
    Key('z', true);
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_TRUE(physics::Simulation::Instance().GetParticles().empty());
}

TEST_F(EntityPopupTest, SelectsByKindAndInverts) {
    AddBox({0, 0});
    const EntityPtr circle = AddCircle({3, 0});
    AddPlane();
    Click({0, 0}, Key::RightMouse);
    PressButton("SelectMenuButton");
    PressButton("SelectCircle");
    EXPECT_EQ(App().GetSelection().Get(), app::EntitySet{circle});
    PressButton("Invert");
    EXPECT_EQ(App().GetSelection().GetSize(), 2u);
    EXPECT_FALSE(App().GetSelection().Has(circle));
    GUI().SelectTool("fixjoint");
    Click({0, 0}, Key::LeftMouse);
    GUI().SelectTool("brush");
    const EntityPtr fix = Entities().back();
    Click({0, 0.4f}, Key::RightMouse);
    PressButton("SelectMenuButton");
    PressButton("SelectFix");
    EXPECT_EQ(App().GetSelection().Get(), app::EntitySet{fix});
}

TEST_F(EntityPopupTest, OrdersAndFollows) {
    const EntityPtr box = AddBox({0, 0}), circle = AddCircle({3, 0});
    Click({0, 0}, Key::RightMouse);
    PressButton("MoveToFront");
    EXPECT_EQ(Entities(), (app::EntityList{circle, box}));
    EXPECT_EQ(UndoName(), "UndoOrder");
    PressButton("MoveToBack");
    EXPECT_EQ(Entities(), (app::EntityList{box, circle}));
    PressButton("FollowObject");
    EXPECT_EQ(Scene().GetTrackedEntity(), box);
    Click({5, 5}, Key::LeftMouse);
    Click({5, 5}, Key::RightMouse);
    PressButton("NoFollow");
    EXPECT_FALSE(Scene().GetTrackedEntity());
}

TEST_F(EntityPopupTest, GoesWithItsEntitiesAndWithTheHistory) {
    const EntityPtr box = AddBox({0, 0});
    Click({0, 0}, Key::RightMouse);
    App().RemoveEntity(box);
    App().Update(0.01f);
    EXPECT_FALSE(FindPopup());
    AddBox({0, 0});
    Key('a', true);
    Key(Key::Delete);
    Click({3, 0}, Key::RightMouse);
    Key('z', true);
    EXPECT_FALSE(FindPopup()) << "undo closes it";
}

}  // namespace
