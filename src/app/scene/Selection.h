#pragma once

#include "app/Fwd.h"
#include "app/entities/Entity.h"
#include "math/BoundingBox.h"

namespace app {

class Scene;

// The selected entities of a scene, which takes out the ones that leave it. They are drawn with App's
// selectColor and a pulse.
class Selection {
  public:
    explicit Selection(Scene& scene) : m_scene(scene) {}

    void Add(const EntityPtr& entity);  // null is a failed assertion
    void Remove(const EntityPtr& entity) { m_entities.erase(entity); }
    void Clear() { m_entities.clear(); }
    bool Has(const EntityPtr& entity) const { return m_entities.count(entity) != 0; }
    bool IsEmpty() const { return m_entities.empty(); }
    size_t GetSize() const { return m_entities.size(); }
    const EntitySet& Get() const { return m_entities; }
    void Set(const EntitySet& entities) { m_entities = entities; }
    EntitySet::const_iterator begin() const { return m_entities.begin(); }
    EntitySet::const_iterator end() const { return m_entities.end(); }

    // Replaces the selection by the topmost entity at the world point and, unless `single`, what belongs to
    // it: its chain and its group. False, with an empty selection, where there is none.
    bool SelectAt(math::Vec2 point, bool single);
    // The same, single while alt is down.
    bool ClickAt(math::Vec2 point);

    // The one that follows the first of the selected among those whose middle is in `view`, from left to
    // right, or comes before it; planes, which are everywhere, come last. For who has no mouse.
    void SelectNext(const math::BoundingBox2f& view, bool backward);

    // The distinct bodies, in the order of the entities, without the world body.
    physics::BodyList GetBodies() const;
    // Round all that have a finite one; not finite when none has.
    math::BoundingBox2f GetExtent() const;
    // The middle of that; `fallback` when it is not finite.
    math::Vec2 GetCenter(math::Vec2 fallback) const;
    // To the end of the scene list, in their order there, so that they are drawn on top: all but planes, and
    // with the joints of what rises.
    void MoveToTop() const;

  private:
    void Widen(const EntityPtr& entity);

    Scene& m_scene;
    EntitySet m_entities;
};

}  // namespace app
