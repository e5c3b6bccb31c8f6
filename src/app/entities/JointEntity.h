#pragma once

#include "app/entities/Entity.h"

namespace app {

// What links two geoms: a hinge, a fix joint or a spring. Each end is a point of a geom, kept in the geom's
// own frame; where there is no shape, the geom of the world stands for the ground behind the scene.
//
// A joint follows its geoms. When it is moved itself, it lets go and takes what lies under its new place;
// when a partner leaves the scene, it takes another shape under that end, and retires when there is none.
// Undo brings it back with the partners that it had.
class JointEntity : public Entity {
  public:
    // One end: a geom, and the point in its frame.
    struct End {
        physics::GeomPtr geom;
        math::Vec2 pos;  // m
    };
    static End EndAt(const physics::GeomPtr& geom, math::Vec2 world);

    JointEntity(const String& name, math::real size);
    ~JointEntity() noexcept(false) override;

    // Takes partners for two points of the world from its scene: those it has, as long as the points lie on
    // them, else the topmost geoms that belong to different bodies. Without such a pair it is orphaned and
    // nothing else changes.
    void Attach(math::Vec2 p0, math::Vec2 p1);
    // Sets both ends; the places in the world follow from them.
    void SetEnds(const End& end0, const End& end1);
    // Makes the physical joint anew from the ends. It enters the world by AddToSimulation.
    virtual void Rebuild() = 0;
    // For a partner that has left the scene: takes another shape under that end, or is orphaned.
    void ReplaceLostPartners();

    bool IsInSimulation() const override;
    bool IsAlive() const override { return !m_orphaned; }
    void Update(float dt) override;

    void BeginMove() override;
    void Transform(const math::RigidTransform& transform) override;
    void EndMove() override;

    // The icon's square; hidden ones cannot be picked.
    bool IsPointInside(math::Vec2 point) const override;
    bool CrossesLines(const physics::LineList& lines) const override;
    bool IsInsidePolygon(const physics::Polygon& polygon) const override;
    math::BoundingBox2f GetBoundingBox() const override;

    void Serialize(EntitySerializer& out) const override;

    const End& GetEnd(int i) const { return m_ends[i]; }
    math::Vec2 GetPos(int i) const { return m_pos[i]; }  // of that end in the world
    math::Vec2 GetMiddle() const { return (m_pos[0] + m_pos[1]) * 0.5f; }
    math::real GetSize() const { return m_size; }
    bool IsOrphaned() const { return m_orphaned; }

    physics::BodyPtr GetEndBody(int i) const;  // null outside the world

  protected:
    void ResetForRestore() override;
    // Where the icon stands and how it is turned: with the first geom.
    math::RigidTransform GetIconPlace() const;
    bool IsHidden() const;

  private:
    bool KeepsPartner(int i, math::Vec2 point) const;

    math::real m_size;  // m, the side of the icon or the width of the spring
    bool m_orphaned = false;
    End m_ends[2];
    math::Vec2 m_pos[2];       // m, of the ends in the world
    math::Vec2 m_startPos[2];  // m, the same at the start of a move
};

}  // namespace app
