#include "gui/Layout.h"

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

// The box round all outer rectangles, after putting one behind the other.
math::BoundingBox2f PlaceInRow(const ComponentList& children, bool isVertical) {
    math::BoundingBox2f box;
    Vec2 cursor;
    for (const ComponentPtr& child : children) {
        child->SetPos(cursor.x, cursor.y);
        const Vec2 outer = child->GetOuterSize();
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

}  // namespace

void ListLayout::Apply(Component& owner, const ComponentList& children) {
    if (children.empty()) return;
    const bool isVertical = (m_flags & Vertical) != 0;
    math::BoundingBox2f box;
    {
        const NotificationPause pause(children);
        box = PlaceInRow(children, isVertical);
        for (const ComponentPtr& child : children) {
            if (m_flags & StretchCross) Stretch(*child, isVertical, box.GetSize());
        }
        for (const ComponentPtr& child : children) {
            if (m_flags & AlignEnd) PushToEnd(*child, isVertical, box.max);
        }
    }
    const Vec2 extent = box.GetSize();
    if (math::IsFinite(extent)) owner.SetSize(extent.x, extent.y);
}

}  // namespace gui
