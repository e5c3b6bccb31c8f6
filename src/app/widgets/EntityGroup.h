#pragma once

#include <vector>

#include "app/Fwd.h"
#include "app/entities/Entity.h"
#include "app/scene/Scene.h"
#include "script/Attributes.h"

namespace app {

// The entities that a control is about. Holds none of them: those that die or leave the scene are not in it
// any more, and come back with undo.
class EntityGroup {
  public:
    EntityGroup(Scene& scene, const EntitySet& entities);

    EntitySet Get() const;  // those in the scene
    bool IsEmpty() const;   // cheaper than Get
    Scene& GetScene() const { return *m_scene; }

    // The attributes of that name and type that its entities have.
    template <class T>
    std::vector<script::TAttribPtr<T>> FindAttribs(const char* name) const {
        std::vector<script::TAttribPtr<T>> attribs;
        for (const EntityPtr& entity : Get()) {
            const auto attrib = util::DynamicCast<script::TAttrib<T>>(entity->FindLocal(name));
            if (attrib) attribs.push_back(attrib);
        }
        return attribs;
    }

  private:
    Scene* m_scene;
    std::vector<util::WeakPtr<Entity>> m_entities;
};

}  // namespace app
