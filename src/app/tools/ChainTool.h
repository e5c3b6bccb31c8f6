#pragma once

#include "app/entities/JointEntity.h"
#include "app/tools/Tool.h"

namespace app {

// A drag lays a chain: round links in a row that touch, with a hinge at every touching point and one at
// either end, to the shape there or to the ground behind the scene.
class ChainTool : public Tool {
  public:
    explicit ChainTool(const Workbench& bench);
    ~ChainTool() noexcept(false) override;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Draw() override;
    bool Cancel() override;

  private:
    // Where the links of a chain lie: from `from` on, in steps of 2 * half along a line.
    struct Layout {
        math::Vec2 from, along;  // along is of length 1
        math::real half = 0;     // m, of a link: its radius
        int links = 0;           // 0 for none
    };

    JointEntity::End PickAt(math::Vec2 world) const;
    math::Vec2 GetStart() const;
    // To a place over that geom.
    Layout LayOut(const physics::GeomPtr& last, math::Vec2 to) const;
    void Build(const Layout& layout, const JointEntity::End& last);

    SnapshotPtr m_before;      // of the press; null while idle
    JointEntity::End m_first;  // valid during a drag
};

}  // namespace app
