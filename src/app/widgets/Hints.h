#pragma once

#include <vector>

#include "app/Fwd.h"
#include "gui/Component.h"
#include "script/Attributes.h"

namespace app {

// What a newcomer may try, in the picture: at most three lines, each of which goes away for good when the
// user has done it. Stands in the middle of its parent's lower edge and takes no mouse.
class Hints : public gui::Component {
  public:
    enum Kind { Draw, Play, Popup };

    // `done` is kept with the settings: the names of the hints that are over.
    explicit Hints(const script::TAttribPtr<String>& done);

    bool IsPending(Kind kind) const;
    void Finish(Kind kind);

    void Update(float dt) override;

  private:
    struct Entry {
        Kind m_kind;
        gui::ComponentPtr m_label;  // null when it is over
    };

    bool HasDrawn() const;
    void Place();

    const script::TAttribPtr<String> m_done;
    std::vector<Entry> m_entries;
};

}  // namespace app
