#include "app/windows/KeysWindow.h"

#include <algorithm>

#include "app/Language.h"
#include "app/windows/Rows.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Button.h"
#include "gui/components/Label.h"
#include "gui/components/ScrollArea.h"
#include "input/Key.h"
#include "input/KeyBinder.h"

namespace app {
namespace {

constexpr float NAME_WIDTH = 260;  // GUI units
constexpr float KEY_WIDTH = 130;
constexpr float LIST_ROOM = 140;  // of the interface's height, left free

// Keys that need no command: built into the interface.
const std::pair<const char*, const char*> FIXED_KEYS[] = {{"KeyCancel", "escape"},
                                                          {"KeyPan", "left, right, up, down"},
                                                          {"KeyFocus", "tab, shift+tab"},
                                                          {"KeyWheel", "scrollup, scrolldown"},
                                                          {"KeyConsole", "f11"}};

bool IsModifier(int key) {
    return key >= gui::Key::RightShift && key <= gui::Key::LeftMeta;
}

String GetCombination(const gui::KeyEvent& event) {
    script::KeyCombination combination;
    combination.key = event.m_key;
    combination.ctrl = event.m_ctrl;
    combination.alt = event.m_alt;
    combination.shift = event.m_shift;
    return combination.GetName();
}

bool IsBound(const String& key) {
    const script::KeyBinder* const binder = script::KeyBinder::Find();
    if (binder == nullptr) return false;
    const std::vector<script::KeyBinding> all = binder->GetBindings();
    return std::any_of(all.begin(), all.end(),
                       [&key](const script::KeyBinding& binding) { return binding.key == key; });
}

}  // namespace

KeysWindow::KeysWindow(Commands& commands, const Desk& desk)
    : Window(Translate("KeysTitle"), MakeRowLayout()),
      m_commands(commands),
      m_rows(new gui::Component("Keys", MakeRowLayout())),
      m_message(new gui::Label) {
    SetKey("KeysTitle");
    Fill();
    AddChild(MakeScrolled(m_rows, desk, LIST_ROOM));
    AddChild(m_message);
}

KeysWindow::~KeysWindow() noexcept(false) = default;

void KeysWindow::Fill() {
    m_isStale = false;
    const gui::Component* const focused = gui::Focus::Get();
    const String row = focused != nullptr && focused->IsInside(*m_rows) ? focused->GetKey() : String();
    m_rows->RemoveAllChildren();
    for (const Command& command : m_commands.GetAll()) {
        const String name = command.m_name;
        m_rows->AddChild(
            MakeKeyRow(name, Translate(command.m_name), GetKeyText(command), [=](const gui::KeyEvent& event) {
                return !IsBound(GetCombination(event)) && m_commands.SetKey(name, event.m_key, event.m_ctrl);
            }));
    }
    for (const auto& [name, key] : FIXED_KEYS)
        m_rows->AddChild(MakeRow({MakeCell(Translate(name), NAME_WIDTH), MakeCell(key, KEY_WIDTH)}));
    AddBoundKeys();
    for (const gui::ComponentPtr& line : m_rows->GetChildren()) {
        const gui::ComponentPtr last = line->GetChildren().back();
        if (!row.empty() && last->GetKey() == row) gui::Focus::Set(last.Get());
    }
}

gui::ComponentPtr KeysWindow::MakeKeyRow(const String& name, const String& text, const String& key,
                                         const std::function<bool(const gui::KeyEvent&)>& take) {
    const String shown = m_awaited == name ? Translate("PressAKey") : key;
    const gui::ButtonPtr button = new gui::Button(shown.empty() ? "-" : shown);
    button->SetSize(KEY_WIDTH, button->GetSize().y);
    button->SetKey(name);
    const auto await = [this, name, take] {
        m_awaited = name;
        m_take = take;
        m_message->SetText(Translate("PressAKey"));
        m_isStale = true;
    };
    button->GetOnPress().Add(new util::Callback(await, util::WeakPtr<util::Pointee>(this)));
    return MakeRow({MakeCell(text, NAME_WIDTH), button});
}

void KeysWindow::AddBoundKeys() {
    script::KeyBinder* const binder = script::KeyBinder::Find();
    if (binder == nullptr) return;
    for (const script::KeyBinding& binding : binder->GetBindings()) {
        const String key = binding.key;
        m_rows->AddChild(MakeKeyRow(key, binding.action, key, [=](const gui::KeyEvent& event) {
            if (event.m_key != gui::Key::Delete) return binder->Move(key, GetCombination(event));
            binder->Unbind(key);
            return true;
        }));
    }
}

// Rows are not taken away while one of their own buttons is at work.
void KeysWindow::Update(float dt) {
    if (m_isStale) Fill();
    Window::Update(dt);
}

void KeysWindow::OnKeyEvent(gui::KeyEvent& event) {
    const bool canBeBound = event.m_key < gui::Key::LeftMouse && gui::Key::HasName(event.m_key);
    if (m_awaited.empty() || !canBeBound || !event.m_pressed || event.m_handled || IsModifier(event.m_key)) {
        Window::OnKeyEvent(event);
        return;
    }
    event.m_handled = true;
    Take(event);
}

void KeysWindow::Take(const gui::KeyEvent& event) {
    const auto take = m_take;
    m_awaited.clear();
    m_isStale = true;
    m_message->SetText(String());
    if (event.m_key == gui::Key::Escape) return;
    if (!take(event)) m_message->SetText(Translate("KeyTaken"));
}

}  // namespace app
