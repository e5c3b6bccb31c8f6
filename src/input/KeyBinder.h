#pragma once

#include <map>
#include <vector>

#include "input/InputListener.h"
#include "script/Reflected.h"

namespace script {

// What a binding listens to: a key, and the modifiers that must be down with it. Written "ctrl+shift+b".
struct KeyCombination {
    // Raises ScriptException for a name that is not one.
    static KeyCombination Parse(const String& name);
    String GetName() const;

    bool operator<(const KeyCombination& other) const;

    int key = 0;  // key code
    bool ctrl = false;
    bool alt = false;
    bool shift = false;
};

// For lists that show the user's keys.
struct KeyBinding {
    String key;         // its name
    String action;      // the function's source
    bool fromAutoexec;  // as "autoexec.cfg" has it; otherwise changed by the user since
};

// The user's own key bindings, in scripts "Keys": `Keys.bind("space", { Sim.running = ! Sim.running })`,
// `Keys.unbind("space")`. They are part of every saved configuration. The parser owns the binder.
//
// "autoexec.cfg" binds at each start, and a user may rebind in the program what stands there. Of the two the
// newer wins: with a key that differs from autoexec's, the saved text tells what autoexec had said then
// (`Keys.autoexec`), and autoexec binds it again only when it says something else now.
class KeyBinder : public Reflected {
  public:
    KeyBinder();

    // The parser's; null where there is none.
    static KeyBinder* Find();

    // `action` is a function without parameters. Replaces what was bound to the key. Throws
    // ScriptException.
    void Bind(const ObjectPtr& key, const ObjectPtr& action);
    void Unbind(const String& key);
    // What one key does another does from now on. False, and nothing changes, when that one is bound already.
    bool Move(const String& from, const String& to);

    // By the order of the key codes.
    std::vector<KeyBinding> GetBindings() const;

    // While "autoexec.cfg" is being run.
    class Autoexec {
      public:
        Autoexec() { ++s_autoexec; }
        ~Autoexec() { --s_autoexec; }
        Autoexec(const Autoexec&) = delete;
        Autoexec& operator=(const Autoexec&) = delete;
    };

    // Runs the binding of a key that was pressed and not taken by anybody else: the one with just the
    // modifiers that are down, or else the one without any. What the binding throws is logged.
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

    struct Entry {
        AbstractFunctionPtr function;  // null when unbound
        AbstractFunctionPtr autoexec;  // what "autoexec.cfg" binds in this run; null for nothing
        AbstractFunctionPtr
            answered;  // what it bound in the run whose settings were loaded; null for nothing
    };

    void BindAsAutoexec(Entry& entry, const AbstractFunctionPtr& function);
    void NoteAutoexec(const ObjectPtr& key, const ObjectPtr& action);
    AbstractFunctionPtr FindAction(const gui::KeyEvent& event) const;

    std::map<KeyCombination, Entry> m_entries;
    gui::InputListenerPtr m_listener;  // hands key events on

    static int s_autoexec;
};

}  // namespace script
