#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "app/AppGUI.h"
#include "app/entities/Entity.h"
#include "app/history/Actions.h"
#include "app/history/Undoer.h"
#include "input/InputEvents.h"
#include "math/Vector.h"
#include "physics/Body.h"

namespace test {

void MoveMouse(math::Vec2 gui);  // GUI units

// The world view and its interface without window and GL: 1024 by 768 GUI units, 100 of them per metre,
// the world's origin in the middle. Everything a user does is done by events in world places. The scene and
// the history are empty at each start.
class AppGUIFixture : public testing::Test {
  protected:
    AppGUIFixture();
    ~AppGUIFixture() override;

    static app::App& App();
    static app::AppGUI& GUI();
    static app::Scene& Scene();
    static app::View& View();
    static const app::EntityList& Entities();
    static size_t UndoCount();
    // Of the last action; "" for an empty history.
    static String UndoName();

    static app::EntityPtr AddBox(math::Vec2 center, float side = 1);
    static app::EntityPtr AddCircle(math::Vec2 center, float radius = 0.5f);
    static app::EntityPtr AddPlane(float height = -3);  // solid below
    static math::Vec2 PlaceOf(const app::EntityPtr& entity);
    static physics::BodyPtr BodyOf(const app::EntityPtr& entity);

    // A drag along world places. Each answers whether its event was handled.
    static bool Press(math::Vec2 world, int button);
    static bool DragTo(math::Vec2 world);
    static bool Release();
    static void Drag(const math::Vec2List& path, int button);

    static bool Click(math::Vec2 world, int button, int clicks = 1);
    static bool Key(int key, bool ctrl = false, math::Vec2 mouse = {0, 0});
    static void SetModifier(int key, bool down);  // a shift, ctrl or alt key, held from now on

    // The topmost control of that language key below the world view; null for none.
    static gui::ComponentPtr FindWidget(const String& key);
    static void PressButton(const String& key);
    static std::vector<gui::Window*> GetOpenWindows();  // with menus and dialogs

    static math::Vec2List Circle(math::Vec2 center, float radius, float turns = 0.98f);

  private:
    static gui::DragEvent MakeDrag(math::Vec2 world);

    static math::Vec2 s_dragStart;  // GUI units; these three describe the drag under way
    static math::Vec2 s_dragLast;
    static int s_dragButton;
};

}  // namespace test
