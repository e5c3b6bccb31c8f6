#pragma once

#include <array>

#include "app/Fwd.h"
#include "app/scene/SceneSettings.h"
#include "app/scene/Selection.h"
#include "math/BoundingBox.h"
#include "script/Attributes.h"
#include "util/Callback.h"
#include "util/Random.h"

namespace app {

// What stands in the world: the entities in drawing order, which of them are selected, which one is
// followed, and the name of the file that they are.
//
// Entities are added and removed between updates, or from inside one by dying: RemoveEntity is for callers
// outside the pass over the entities. Entities, tools, history and files get the scene handed to them; it
// knows none of those, nor the view on it.
class Scene {
  public:
    Scene();
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    // One frame: updates the entities, retires those that are not alive any more and frees bodies that no
    // entity needs.
    void Update(float dt);

    // ---- entities

    const EntityList& GetEntities() const { return m_entities; }
    // On top, and into the simulation. An entity without a colour gets the next one.
    void AddEntity(const EntityPtr& entity);
    void RemoveEntity(const EntityPtr& entity);  // at once; out of the simulation as well
    void Clear();                                // all entities, the selection, the tracking
    // A new order of the same entities; for moving some to the front or back.
    void SetEntityOrder(const EntityList& entities);

    bool HasEntity(const EntityPtr& entity) const;
    EntityPtr GetEntityAt(math::Vec2 world) const;     // the topmost, or null
    EntityList GetEntitiesAt(math::Vec2 world) const;  // topmost first
    GeomList GetGeomsAt(math::Vec2 world) const;       // topmost first; the world geom comes last
    // The first of those that does not belong to that body; null when there is none.
    physics::GeomPtr GetGeomAt(math::Vec2 world, const physics::BodyPtr& except = nullptr) const;
    // Round all entities with finite extents, and the planes near them as far as things fall straight onto
    // them; not finite when there are none. Water does not count.
    math::BoundingBox2f GetExtent() const;

    // ---- what belongs together

    Selection& GetSelection() { return m_selection; }
    const Selection& GetSelection() const { return m_selection; }

    // The numbers of groups and chains that entities have, and the lowest that none has.
    std::set<int> GetGroups() const;
    std::set<int> GetChains() const;
    int GetFreeGroup() const { return LowestFree(GetGroups()); }
    int GetFreeChain() const { return LowestFree(GetChains()); }
    static int LowestFree(const std::set<int>& taken);  // from 0 on

    // The one entity that the view follows; null for none. Sets and clears the entities' own flags.
    void Track(const EntityPtr& entity);
    const EntityPtr& GetTrackedEntity() const { return m_trackedEntity; }

    // Joints whose partners have left take others, or retire at the next update. To be called after shapes
    // were removed.
    void SettleJoints();
    // Whether the icons of hinges and fix joints are neither drawn nor picked: while the simulation runs,
    // unless `setting` holds.
    bool HidesJointIcons() const;
    void SetJointIconSetting(const script::AttribPtr<bool>& setting) { m_jointIcons = setting; }

    // ---- bodies

    // Takes bodies out of the simulation's hands for a drag, and gives them back.
    void HoldBodies(const physics::BodyList& bodies);
    void ReleaseBodies(const physics::BodyList& bodies);
    // Removes bodies whose last shape has gone.
    void FlushBodies();

    math::Vec3 GetNextColor();  // for a new entity
    util::Random& GetRandom() { return m_random; }

    // ---- the file

    // The name in Scenes/ of the file that was loaded or saved last; empty for none.
    const String& GetName() const { return m_name; }
    void SetName(const String& name);
    util::CallbackSet& GetOnNameChange() { return m_onNameChange; }  // fired by every SetName

    // How much of a file has been read into it, in percent, told now and then by a reading that takes long.
    int GetLoadedPart() const { return m_loadedPart; }
    void SetLoadedPart(int percent);
    util::CallbackSet& GetOnLoading() { return m_onLoading; }

    // The settings of the world that it brings along.
    SceneSettings& GetSettings() { return m_settings; }
    const SceneSettings& GetSettings() const { return m_settings; }

  private:
    void UpdateEntities(float dt);
    void RetireDead(const EntitySet& dead);
    void Forget(const EntityPtr& entity);
    static bool IsPlaceholder(const physics::Body& body);

    EntityList m_entities;
    Selection m_selection;
    EntityPtr m_trackedEntity;
    util::Random m_random;
    std::array<int, 2> m_lastColors{-1, -1};  // the latest first; places in the palette
    script::AttribPtr<bool> m_jointIcons;     // null: they always show
    String m_name;
    util::CallbackSet m_onNameChange;
    int m_loadedPart = 100;
    util::CallbackSet m_onLoading;
    SceneSettings m_settings;
};

}  // namespace app
