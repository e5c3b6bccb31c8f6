#pragma once

#include <cstddef>
#include <vector>

#include "app/Fwd.h"
#include "util/Pointee.h"
#include "util/WeakPtr.h"

namespace app {

// The entities that one stroke of the chain tool made, in order. It keeps none of them alive; they keep it.
class Chain : public util::Pointee {
  public:
    explicit Chain(int id) : m_id(id) {}

    // Puts the entity at `index`, in place of what stood there; the list grows with empty places as needed.
    // Throws BadDataException for an index of 100000 or more.
    void AddEntity(size_t index, const EntityPtr& entity);
    // The number of places when the entity is not in the chain.
    size_t IndexOf(const Entity& entity) const;
    EntityList GetEntities() const;  // the living, in order
    // The index of the entity among those of its scene: what has left, or is about to, holds no place in a
    // file.
    size_t GetPlaceOf(const Entity& entity) const;
    // Every member stands for itself from now on. The chain keeps its list, which undo needs.
    void Dissolve() const;

    // The two links beside an inner link, or with `all` every link of the chain. Empty for the ends and for
    // an entity that is not in the chain.
    EntitySet GetNeighbors(const EntityPtr& ent, bool all) const;

    int GetID() const { return m_id; }

  private:
    std::vector<util::WeakPtr<Entity>> m_entities;
    int m_id;  // by which scene files refer to it
};

}  // namespace app
