#pragma once

#include "gui/Fwd.h"
#include "input/InputEvents.h"
#include "math/BoundingBox.h"
#include "util/String.h"

namespace gui {

// The one component that the keyboard belongs to; none most of the time. Tab and shift+tab move it over all
// components that can have it (Component::CanFocus), front windows first, the arrows over those of one
// window; escape leaves it, and so does a press of the mouse anywhere else.
class Focus {
  public:
    static Component* Get();                        // null for none
    static void Set(const ComponentWeakPtr& next);  // null takes it away
    // To the next or previous one in the tree under `root`; to the first or last while nobody has it.
    static void Move(Component& root, bool backward);
    // To what lies next to it under `root` in the direction of an arrow key; whether there is such a thing.
    static bool Step(Component& root, int arrow);
    static bool CanMoveInto(Component& root);  // something under `root` can have it

    // Where the focus is, in terms that outlive the components: the tree may be built anew, in another
    // language.
    struct Place {
        String m_kind, m_key;  // of the one that has it, see Component; empty for none
        size_t m_index = 0;    // among those like it
    };
    static Place GetPlace(Component& root);
    static void SetPlace(Component& root, const Place& place);  // nowhere, if there is no such thing

    // The keys told above, for what nobody took. Called by the root of the tree.
    static void HandleKey(Component& root, KeyEvent& event);

    // Round the focused component's content box; for its DrawComp, as the last thing.
    static void DrawRing(const Component& component);
};

math::BoundingBox2f GetBoxInView(const Component& component);  // its outer box, GUI units

}  // namespace gui
