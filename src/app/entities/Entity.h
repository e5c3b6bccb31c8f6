#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "app/Fwd.h"
#include "math/BoundingBox.h"
#include "math/RigidTransform.h"
#include "math/Vector.h"
#include "physics/Line.h"
#include "script/Conversions.h"
#include "script/Reflected.h"

namespace app {

// What the user sees and edits: a scriptable object that owns a piece of the physics world and draws it.
// Where a rigid body consists of several geoms, each geom keeps an entity of its own; the body is none.
//
// Life: made outside the world, it comes into the scene by Scene::AddEntity and into the physics by
// AddToSimulation. Once a frame the scene updates it and retires it as soon as it is not alive any more,
// which is how things that fell out of the world leave the scene. Undo keeps retired entities and brings the
// same objects back, so an entity must be able to return: whatever an edit can change has to be in its
// Values, or be reset by ResetForRestore, but for shapes, places and partners, which the history keeps
// itself.
class Entity : public script::Reflected {
  public:
    explicit Entity(const String& name);
    ~Entity() noexcept(false) override;

    // Fetches the present body of the geom: a fixed joint may have changed it.
    virtual void UpdateBodyPtr() {}

    // One frame, in world coordinates, in the entity's colours times the renderer's.
    virtual void Draw() = 0;

    virtual bool IsPointInside(math::Vec2 point) const = 0;
    virtual bool CrossesLines(const physics::LineList& lines) const = 0;      // an eraser's stroke
    virtual bool IsInsidePolygon(const physics::Polygon& polygon) const = 0;  // wholly; a lasso

    virtual void AddToSimulation() = 0;
    virtual void RemoveFromSimulation() = 0;
    virtual bool IsInSimulation() const { return true; }

    // A tool's drag is bracketed by these two.
    virtual void BeginMove() { m_moving = true; }
    virtual void Transform(const math::RigidTransform& transform) = 0;
    virtual void EndMove() { m_moving = false; }

    // For files. Each class adds its own keys to those of its base.
    virtual void Serialize(EntitySerializer& out) const;
    // Takes what is there. Keys that are absent leave their field alone; of those that should be there,
    // that is logged.
    virtual void Deserialize(const EntitySerializer& in);

    // For the history. As long as nothing changes they are the same object, so that a long history of a great
    // scene holds each state of an entity once.
    struct Values {
        std::vector<script::ObjectPtr> attributes;  // in the order of GetVariables
        math::Vec3 color;
        bool hasColor;
        script::Int group;
        bool tracked;
        ChainPtr chain;

        bool operator==(const Values& other) const;
    };
    using ValuesPtr = std::shared_ptr<const Values>;
    ValuesPtr GetValues() const;
    // Also forgets what they do not tell.
    void Restore(const Values& values);

    virtual math::BoundingBox2f GetBoundingBox() const = 0;

    // A copy with geoms of its own and the same values, outside the world.
    virtual EntityPtr Clone() const = 0;

    virtual void Update(float /*dt*/) {}
    virtual bool IsAlive() const { return IsInSimulation(); }

    uint32_t GetID() const { return m_serial; }  // creation number

    // White and none of its own until it is given one, at the latest by the scene that it enters.
    const math::Vec3& GetColor() const { return m_color; }
    void SetColor(math::Vec3 color);
    bool HasColor() const { return m_hasColor; }
    const math::Vec3& GetTint() const { return m_tint; }
    void SetTint(math::Vec3 tint) { m_tint = tint; }
    math::Vec3 GetDrawColor() const { return m_color * m_tint; }
    bool IsMoving() const { return m_moving; }

    // Groups are numbers that the user gives; entities of one group are selected together.
    static constexpr script::Int NO_GROUP = -1;
    bool HasGroup() const { return m_hasGroup; }
    script::Int GetGroup() const { return m_hasGroup ? m_group : NO_GROUP; }
    void SetGroup(script::Int group);  // NO_GROUP leaves the group

    // Whether the view follows the entity; Scene::Track sets it, for there is only one.
    bool IsTracked() const { return m_tracked; }
    void SetTracked(bool tracked) { m_tracked = tracked; }

    // The scene that it entered last; null before the first.
    Scene* GetScene() const { return m_scene; }
    void SetScene(Scene* scene) { m_scene = scene; }
    bool IsInScene() const { return m_inScene; }
    void EnterScene(Scene* scene);  // these two are the scene's
    void LeaveScene() { m_inScene = false; }

    const ChainPtr& GetChain() const { return m_chain; }
    void SetChain(const ChainPtr& chain);

  protected:
    virtual void ResetForRestore() { m_moving = false; }

    // The values that a clone has in common with its original; not the chain.
    void CopyValuesFrom(const Entity& original);

  private:
    void SerializeAttributes(EntitySerializer& out) const;
    void DeserializeAttributes(const EntitySerializer& in);

    ChainPtr m_chain;
    math::Vec3 m_color{1, 1, 1};  // red, green, blue in 0 to 1
    bool m_hasColor = false;
    math::Vec3 m_tint{1, 1, 1};  // factor on m_color at drawing, set anew for each frame
    bool m_moving = false;       // between BeginMove and EndMove
    bool m_hasGroup = false;
    script::Int m_group = NO_GROUP;
    bool m_tracked = false;
    Scene* m_scene = nullptr;
    bool m_inScene = false;
    uint32_t m_serial;
    mutable ValuesPtr m_values;  // as GetValues gave them last; null before

    static uint32_t s_nextSerial;
};

}  // namespace app
