#pragma once

#include "input/InputListener.h"
#include "util/ProfileTree.h"
#include "util/Singleton.h"

namespace util {

// The user's hand on util::ProfileTree: keypad minus switches it on and off; while it is on, keypad digits
// go down to a child, enter to the slowest one, the period up again.
class Profiler : public gui::InputListener, public Singleton<Profiler> {
  public:
    Profiler() : InputListener("Profiler") {}

    void OnKeyEvent(gui::KeyEvent& event) override;

    void Reset() { ProfileTree::Get().Reset(); }
    void Update() { ProfileTree::Get().Update(); }  // once per frame, outside all sections
    bool IsEnabled() const { return ProfileTree::Get().IsEnabled(); }
    const String& GetReport() const { return ProfileTree::Get().GetReport(); }

  private:
    bool Browse(int key);  // whether the key is one of ours
};

}  // namespace util
