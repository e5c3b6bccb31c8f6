#pragma once

#include <cstdint>

#include "gui/Fwd.h"
#include "util/Pointee.h"

namespace gui {

// Places the children of a component.
class Layout : public util::Pointee {
  public:
    // `children` are those of `owner` that take part.
    virtual void Apply(Component& owner, const ComponentList& children) = 0;
};

// One child behind the other, without gaps, each by its outer size; the owner takes the size of all.
class ListLayout : public Layout {
  public:
    enum Flag : uint32_t {
        Horizontal = 0,
        Vertical = 1,      // the list runs down, not across
        StretchCross = 2,  // all children as wide, across the list, as the widest
        AlignEnd = 4,      // children at the far side across the list
    };

    explicit ListLayout(uint32_t flags) : m_flags(flags) {}

    void Apply(Component& owner, const ComponentList& children) override;

  private:
    uint32_t m_flags;  // of Flag
};

}  // namespace gui
