#include "app/widgets/EntityGroup.h"

namespace app {

EntityGroup::EntityGroup(Scene& scene, const EntitySet& entities) : m_scene(&scene) {
    for (const EntityPtr& entity : entities) m_entities.emplace_back(entity.Get());
}

EntitySet EntityGroup::Get() const {
    EntitySet alive;
    for (const util::WeakPtr<Entity>& weak : m_entities) {
        if (Entity* const entity = weak.Get()) alive.insert(entity);
    }
    const EntityList& all = m_scene->GetEntities();
    EntitySet present;
    for (const EntityPtr& entity : all) {
        if (alive.count(entity) != 0) present.insert(entity);
    }
    return present;
}

bool EntityGroup::IsEmpty() const {
    for (const util::WeakPtr<Entity>& weak : m_entities) {
        Entity* const entity = weak.Get();
        if (entity != nullptr && m_scene->HasEntity(entity)) return false;
    }
    return true;
}

}  // namespace app
