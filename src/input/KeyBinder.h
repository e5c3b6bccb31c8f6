#pragma once

#include <map>

#include "input/InputListener.h"
#include "script/Reflected.h"

namespace script {

// The user's own key bindings, in scripts "Keys": `Keys.bind("space", { Sim.running = ! Sim.running })`.
// They are part of every saved configuration. The parser owns the binder.
class KeyBinder : public Reflected {
  public:
    KeyBinder();

    // `action` is a function without parameters. Replaces what was bound to the key. Throws
    // ScriptException.
    void Bind(const ObjectPtr& key, const ObjectPtr& action);

    // Runs the binding of a key that was pressed and not taken by anybody else. What the binding throws is
    // logged.
    void OnKeyEvent(gui::KeyEvent& event);

    // The calls that make the present bindings, in the order of the key codes.
    CodeBlockPtr ToAssignments(const IdentifierPtr& path, PrintWalk& walk) const override;

  private:
    class BindInputListener : public gui::InputListener {
      public:
        explicit BindInputListener(KeyBinder& binder) : m_binder(&binder) {}
        void OnKeyEvent(gui::KeyEvent& event) override;

      private:
        util::WeakPtr<KeyBinder> m_binder;
    };

    std::map<int, AbstractFunctionPtr> m_bindings;  // by key code
    gui::InputListenerPtr m_listener;               // hands key events on
};

}  // namespace script
