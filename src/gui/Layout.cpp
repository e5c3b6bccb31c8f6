#include "gui/Layout.h"

#include <cmath>

#include "gui/Component.h"

namespace gui {
namespace {

using math::Vec2;

// Keeps a layout's own moves from setting off layouts.
class NotificationPause {
  public:
    explicit NotificationPause(const ComponentList& children) : m_children(children) {
        for (const ComponentPtr& child : m_children) child->SetAutoNotify(false);
    }
    ~NotificationPause() {
        for (const ComponentPtr& child : m_children) child->SetAutoNotify(true);
    }
    NotificationPause(const NotificationPause&) = delete;
    NotificationPause& operator=(const NotificationPause&) = delete;

  private:
    const ComponentList& m_children;
};

bool IsOrdinary(Vec2 v) {
    return std::isfinite(v.x) && std::isfinite(v.y);
}

// Puts one child behind the other. The result is the box round all outer rectangles, empty when one of them
// is no place on screen: then the others keep theirs.
math::BoundingBox2f PlaceInRow(const ComponentList& children, bool isVertical) {
    math::BoundingBox2f box;
    Vec2 cursor;
    for (const ComponentPtr& child : children) {
        const Vec2 outer = child->GetOuterSize();
        if (!IsOrdinary(cursor + outer)) return {};
        child->SetPos(cursor.x, cursor.y);
        box.Extend(cursor);
        box.Extend(cursor + outer);
        (isVertical ? cursor.y : cursor.x) += isVertical ? outer.y : outer.x;
    }
    return box;
}

void Stretch(Component& child, bool isVertical, Vec2 extent) {
    const Vec2 size = child.GetSize(), room = extent - (child.GetOuterSize() - size);
    if (isVertical) {
        child.SetSize(room.x, size.y);
    } else {
        child.SetSize(size.x, room.y);
    }
}

void PushToEnd(Component& child, bool isVertical, Vec2 end) {
    const Vec2 pos = child.GetPos(), place = end - child.GetOuterSize();
    if (isVertical) {
        child.SetPos(place.x, pos.y);
    } else {
        child.SetPos(pos.x, place.y);
    }
}

// An owner that would not become as narrow as its children, a window for its title, has them fill it.
void FillWidened(const Component& owner, const ComponentList& children, bool isVertical, Vec2 extent) {
    const Vec2 size = owner.GetSize();
    if (isVertical ? size.x <= extent.x : size.y <= extent.y) return;
    const NotificationPause pause(children);
    for (const ComponentPtr& child : children) Stretch(*child, isVertical, size);
}

}  // namespace

void ListLayout::Apply(Component& owner, const ComponentList& children) {
    if (children.empty()) return;
    const bool isVertical = (m_flags & Vertical) != 0;
    Vec2 extent;
    {
        const NotificationPause pause(children);
        const math::BoundingBox2f box = PlaceInRow(children, isVertical);
        extent = box.GetSize();
        if (!IsOrdinary(extent)) return;
        for (const ComponentPtr& child : children) {
            if (m_flags & StretchCross) Stretch(*child, isVertical, extent);
            if (m_flags & AlignEnd) PushToEnd(*child, isVertical, box.max);
        }
    }
    owner.SetSize(extent.x, extent.y);
    if (m_flags & StretchCross) FillWidened(owner, children, isVertical, extent);
}

}  // namespace gui
