#include "gui/Focus.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include "Events.h"
#include "gui/Root.h"
#include "gui/Window.h"
#include "gui/components/Button.h"
#include "gui/components/ScrollArea.h"
#include "gui/components/TextField.h"
#include "input/Input.h"
#include "util/Clock.h"

namespace {

using gui::Button;
using gui::ButtonPtr;
using gui::Component;
using gui::ComponentPtr;
using gui::Focus;
using gui::Key;
using gui::TextFieldPtr;
using gui::WindowPtr;
using math::Vec2;

class TreeTest : public testing::Test {
  protected:
    TreeTest() : m_root(new gui::Root), m_view(new Component("view")) {
        m_root->SetSize(800, 600);
        m_view->SetSize(800, 600);
        m_root->AddChild(m_view);
    }
    ~TreeTest() override { Focus::Set(nullptr); }

    WindowPtr AddWindow(Vec2 pos, Vec2 size, const String& title = "m") {
        const WindowPtr window = new gui::Window(title);
        m_view->AddChild(window);
        window->SetPos(pos.x, pos.y);
        window->SetSize(size.x, size.y);
        return window;
    }
    bool Send(gui::KeyEvent event) {
        m_root->OnKeyEvent(event);
        return event.m_handled;
    }
    bool Press(int key, char character = 0, bool shift = false) {
        gui::KeyEvent event = test::Press(key, {-1, -1});
        event.m_character = character;
        event.m_shift = shift;
        return Send(event);
    }
    static void SetMouseButton(bool down) {
        SDL_Event event{};
        event.type = static_cast<Uint8>(down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP);
        event.button.button = SDL_BUTTON_LEFT;
        gui::Input::Instance().HandleEvent(event);
    }
    void ClickAt(Vec2 place) {
        Send(test::Press(Key::LeftMouse, place));
        Send(test::Release(Key::LeftMouse, place));
        gui::ClickEvent click;
        click.m_position = place;
        click.m_key = Key::LeftMouse;
        m_root->OnClick(click);
    }

    const ComponentPtr m_root, m_view;
};

// ---- focus -------------------------------------------------------------------------------------------

TEST_F(TreeTest, TabMovesTheFocusThroughTheFrontWindowFirst) {
    const WindowPtr back = AddWindow({0, 0}, {100, 100}), front = AddWindow({300, 0}, {100, 100});
    const ButtonPtr a = new Button("a"), b = new Button("b"), c = new Button("c");
    const ButtonPtr off = new Button("off");
    off->SetEnabled(false);
    back->AddChild(c);
    front->AddChild(a);
    front->AddChild(off);
    front->AddChild(b);
    EXPECT_EQ(Focus::Get(), nullptr);
    for (const Component* expected : {a.Get(), b.Get(), c.Get(), a.Get()}) {
        EXPECT_TRUE(Press(Key::Tab, '\t'));
        EXPECT_EQ(Focus::Get(), expected);
    }
    Press(Key::Tab, '\t', true);
    EXPECT_EQ(Focus::Get(), c.Get());
    EXPECT_TRUE(Press(Key::Escape));
    EXPECT_EQ(Focus::Get(), nullptr);
    EXPECT_FALSE(Press(Key::Escape));
}

TEST_F(TreeTest, ReturnAndSpacePressTheFocusedButton) {
    const WindowPtr window = AddWindow({0, 0}, {100, 100});
    const ButtonPtr button = new Button("a");
    window->AddChild(button);
    int fired = 0;
    button->GetOnPress().Add(new util::Callback([&fired] { ++fired; }, button));
    EXPECT_FALSE(Press(Key::Space, ' '));
    Focus::Set(button);
    EXPECT_TRUE(Press(Key::Space, ' '));
    EXPECT_TRUE(Press(Key::Return, '\r'));
    EXPECT_EQ(fired, 2);
    ClickAt({700, 500});
    EXPECT_EQ(Focus::Get(), nullptr);
    EXPECT_FALSE(Press(Key::Space, ' '));
}

TEST_F(TreeTest, AFieldTypesWhileItHasTheFocus) {
    const WindowPtr window = AddWindow({0, 0}, {300, 100});
    const TextFieldPtr field = new gui::TextField("mm"), other = new gui::TextField;
    window->AddChild(field);
    window->AddChild(other);
    other->SetPos(0, 50);
    EXPECT_FALSE(Press('x', 'x'));

    ClickAt(field->ToGUI({4 + 10, 5}));
    EXPECT_TRUE(field->HasFocus());
    EXPECT_TRUE(Press('x', 'x'));
    EXPECT_EQ(field->GetText(), "mxm") << "typed where the click was";
    EXPECT_TRUE(Press(Key::Tab, '\t'));
    EXPECT_TRUE(other->HasFocus());
    EXPECT_TRUE(Press('y', 'y'));
    EXPECT_EQ(other->GetText(), "y");
    EXPECT_EQ(field->GetText(), "mxm");
    int lost = 0;
    other->GetOnLostFocus().Add(new util::Callback([&lost] { ++lost; }, other));
    ClickAt({700, 500});
    EXPECT_EQ(lost, 1);
    EXPECT_FALSE(Press('y', 'y'));
}

TEST_F(TreeTest, CtrlAMarksTheTextOfAField) {
    const WindowPtr window = AddWindow({0, 0}, {300, 100});
    const TextFieldPtr field = new gui::TextField("old");
    window->AddChild(field);
    gui::KeyEvent ctrlA = test::Press('a', {});
    ctrlA.m_ctrl = true;
    field->OnKeyEvent(ctrlA);
    EXPECT_FALSE(ctrlA.m_handled) << "without the focus it is somebody else's";
    Focus::Set(field);
    field->OnKeyEvent(ctrlA);
    EXPECT_TRUE(ctrlA.m_handled);
    EXPECT_TRUE(Press('n', 'n'));
    EXPECT_TRUE(Press('e', 'e'));
    EXPECT_EQ(field->GetText(), "ne");
}

TEST_F(TreeTest, EscapeClosesADialogThatHasTheFocus) {
    const WindowPtr dialog = AddWindow({0, 0}, {300, 100});
    const TextFieldPtr field = new gui::TextField;
    dialog->AddChild(field);
    dialog->SetClosesAtEscape(true);
    EXPECT_FALSE(Press(Key::Escape));
    Focus::Set(field);
    EXPECT_TRUE(Press(Key::Escape));
    EXPECT_EQ(dialog->GetParent(), nullptr);
    EXPECT_TRUE(Press('x', 'x') == false && field->GetText().empty());
}

TEST_F(TreeTest, ArrowsGoToTheNextControlOfTheWindow) {
    const WindowPtr window = AddWindow({0, 0}, {300, 300}), other = AddWindow({300, 0}, {100, 100});
    // a  b
    //    c
    // d
    ButtonPtr a = new Button("a"), b = new Button("b"), c = new Button("c"), d = new Button("d");
    const Vec2 places[] = {{0, 0}, {100, 0}, {100, 50}, {0, 100}};
    size_t i = 0;
    for (const ButtonPtr& button : {a, b, c, d}) {
        window->AddChild(button);
        button->SetPos(places[i].x, places[i].y);
        ++i;
    }
    other->AddChild(new Button("far"));
    Focus::Set(a);
    const std::pair<int, ButtonPtr> steps[] = {
        {Key::Right, b}, {Key::Right, b}, {Key::Down, c}, {Key::Down, d}, {Key::Right, c},
        {Key::Up, b},    {Key::Left, a},  {Key::Down, d}, {Key::Up, a},   {Key::Up, a}};
    for (const auto& [arrow, expected] : steps) {
        EXPECT_TRUE(Press(arrow)) << "arrows at the edge do not reach the world";
        EXPECT_EQ(Focus::Get(), expected.Get()) << arrow;
    }
    Focus::Set(nullptr);
    EXPECT_FALSE(Press(Key::Right));
}

TEST_F(TreeTest, AWindowThatTookTheFocusGivesItBack) {
    const WindowPtr window = AddWindow({0, 0}, {100, 100});
    const ButtonPtr button = new Button("a"), first = new Button("b");
    window->AddChild(button);
    Focus::Set(button);
    const WindowPtr opened = AddWindow({300, 0}, {100, 100});
    opened->AddCloseButton();
    opened->AddChild(first);
    opened->TakeFocus();
    EXPECT_EQ(Focus::Get(), opened->GetCloseButton().Get());
    EXPECT_TRUE(Press(Key::Down));
    EXPECT_EQ(Focus::Get(), first.Get());
    EXPECT_TRUE(Press(Key::Escape));
    EXPECT_EQ(opened->GetParent(), nullptr);
    EXPECT_EQ(Focus::Get(), button.Get());
    EXPECT_TRUE(Press(Key::Escape)) << "a window that the focus walked into stays";
    EXPECT_EQ(window->GetParent(), m_view.Get());
    EXPECT_EQ(Focus::Get(), nullptr);
}

TEST_F(TreeTest, AScrolledTextTakesTheArrows) {
    const ComponentPtr text = new Component("text");
    text->SetSize(100, 500);
    const gui::ScrollAreaPtr area = new gui::ScrollArea(text, 110);
    const WindowPtr window = AddWindow({0, 0}, {100, 100});
    window->AddChild(area);
    Press(Key::Tab);
    EXPECT_EQ(Focus::Get(), area.Get());
    Press(Key::Down);
    Press(Key::Down);
    EXPECT_EQ(area->GetOffset(), 44);
    Press(Key::Up);
    EXPECT_EQ(area->GetOffset(), 22);
    text->AddChild(new Button("m"));
    EXPECT_FALSE(area->CanFocus()) << "the controls inside have it";
}

TEST_F(TreeTest, ATipShowsWhenMouseOrFocusHaveRested) {
    static double s_time;
    s_time = 100;
    util::Clock::SetSource([] { return s_time; });
    const WindowPtr window = AddWindow({100, 100}, {200, 200});
    const ButtonPtr button = new Button("mm");
    button->SetToolTip("what it does");
    window->AddChild(button);
    const auto isShownAfter = [&](double seconds) {
        s_time += seconds;
        m_root->Update(0);
        const gui::ComponentList& all = m_root->GetChildren();
        return std::any_of(all.begin(), all.end(), [](const ComponentPtr& child) {
            return child->IsVisible() && child->GetShownText() == "what it does";
        });
    };
    const auto moveMouse = [](Vec2 place) {
        gui::Input::Instance().FinishPump({static_cast<int>(place.x), static_cast<int>(place.y)});
    };
    moveMouse({700, 500});
    EXPECT_FALSE(isShownAfter(1));
    moveMouse(button->ToGUI({5, 5}));
    EXPECT_FALSE(isShownAfter(0));
    EXPECT_FALSE(isShownAfter(0.4));
    EXPECT_TRUE(isShownAfter(0.2));
    SetMouseButton(true);
    SetMouseButton(false);
    EXPECT_FALSE(isShownAfter(0));
    EXPECT_FALSE(isShownAfter(1)) << "a tap ends it";
    moveMouse({700, 500});
    EXPECT_FALSE(isShownAfter(0.1));
    Focus::Set(button);
    EXPECT_FALSE(isShownAfter(0.1));
    EXPECT_TRUE(isShownAfter(0.6));
    moveMouse({710, 500});
    EXPECT_FALSE(isShownAfter(0.1)) << "the mouse takes over again";
    util::Clock::SetSource(nullptr);
}

// ---- covering ----------------------------------------------------------------------------------------

TEST_F(TreeTest, WhatLiesUnderAWindowIsOutOfReach) {
    const WindowPtr lower = AddWindow({100, 100}, {200, 200});
    const ButtonPtr button = new Button("mm");
    lower->AddChild(button);
    const Vec2 place = button->ToGUI({5, 5});
    EXPECT_TRUE(button->IsHit(place));
    EXPECT_TRUE(lower->IsHit(place));

    const WindowPtr upper = AddWindow({100, 100}, {200, 200});
    EXPECT_FALSE(button->IsHit(place));
    EXPECT_FALSE(lower->IsHit(place));
    EXPECT_TRUE(upper->IsHit(place));
    EXPECT_FALSE(Send(test::Press(Key::LeftMouse, place)));
    EXPECT_FALSE(button->IsPressed());

    m_view->RemoveChild(upper);
    Send(test::Press(Key::LeftMouse, place));
    EXPECT_TRUE(button->IsPressed());
}

TEST_F(TreeTest, TheUpperWindowIsDraggedAndRaised) {
    const WindowPtr lower = AddWindow({100, 100}, {200, 200}), upper = AddWindow({50, 60}, {300, 300});
    EXPECT_FALSE(Send(test::Press(Key::LeftMouse, {150, 110})))
        << "the lower title lies under the upper content";
    EXPECT_FALSE(lower->IsDragged());
    EXPECT_EQ(m_view->GetChildren().back(), upper);
    Send(test::Press(Key::LeftMouse, {320, 460}));
    upper->SetPos(400, 300);
    Send(test::Press(Key::LeftMouse, {150, 200}));
    EXPECT_EQ(m_view->GetChildren().back(), lower) << "a press anywhere in a window raises it";
}

TEST_F(TreeTest, TitleBarsStayInView) {
    const WindowPtr window = AddWindow({700, 100}, {200, 100});
    Send(test::Press(Key::LeftMouse, window->ToGUI({10, -10})));
    gui::MouseMoveEvent away = test::Move({}, {-5000, 5000});
    m_root->OnMouseMove(away);
    EXPECT_EQ(window->GetPos(), Vec2(0, 600 - 26));
    gui::MouseMoveEvent back = test::Move({}, {5000 - 200, -5000});
    m_root->OnMouseMove(back);
    EXPECT_EQ(window->GetPos(), Vec2(500, 100)) << "it comes back with the mouse";
    m_view->SetSize(400, 90);
    EXPECT_EQ(window->GetPos(), Vec2(400 - 212, 64));
    m_view->SetSize(100, 10);
    EXPECT_EQ(window->GetPos(), Vec2(0, 0));
}

TEST_F(TreeTest, AScrolledListShowsAndTakesWhatIsInView) {
    const ComponentPtr list = new Component("list", new gui::ListLayout(gui::ListLayout::Vertical));
    std::vector<ButtonPtr> buttons;
    for (int i = 0; i < 20; ++i) {
        buttons.push_back(new Button("mmmm"));
        list->AddChild(buttons.back());
    }
    const gui::ScrollAreaPtr area = new gui::ScrollArea(list, 110);
    m_view->AddChild(area);
    EXPECT_EQ(area->GetSize().y, 110);
    EXPECT_TRUE(buttons[0]->IsHit({10, 10}));
    EXPECT_FALSE(buttons[6]->IsHit({10, 6 * 22 + 10})) << "below the edge";
    EXPECT_TRUE(Send(test::Press(Key::ScrollDown, {10, 10})));
    EXPECT_EQ(area->GetOffset(), 66);
    EXPECT_TRUE(buttons[3]->IsHit({10, 10}));
    EXPECT_FALSE(Send(test::Press(Key::ScrollDown, {10, 200})));
    area->ScrollTo(1e6f);
    EXPECT_EQ(area->GetOffset(), 20 * 22 - 110);
    Focus::Set(buttons[2]);
    area->Update(0);
    EXPECT_TRUE(buttons[2]->IsHit({10, 10})) << "the focus is brought into view";
}

}  // namespace
