#include "app/entities/Chain.h"

#include <algorithm>

#include "app/entities/Entity.h"
#include "util/Assert.h"

namespace app {

void Chain::AddEntity(size_t index, const EntityPtr& entity) {
    DATA_ASSERTION(index < 100000);
    if (index >= m_entities.size()) m_entities.resize(index + 1);
    m_entities[index] = entity;
    entity->SetChain(this);
}

size_t Chain::IndexOf(const Entity& entity) const {
    const auto found = std::find_if(m_entities.begin(), m_entities.end(),
                                    [&entity](const auto& member) { return member.Get() == &entity; });
    return static_cast<size_t>(found - m_entities.begin());
}

EntityList Chain::GetEntities() const {
    EntityList living;
    for (const auto& member : m_entities) {
        if (member) living.push_back(member.Get());
    }
    return living;
}

size_t Chain::GetPlaceOf(const Entity& entity) const {
    size_t place = 0;
    for (const EntityPtr& member : GetEntities()) {
        if (member.Get() == &entity) break;
        if (member->IsInScene() && member->IsInSimulation() && member->GetChain().Get() == this) ++place;
    }
    return place;
}

void Chain::Dissolve() const {
    for (const EntityPtr& member : GetEntities()) {
        if (member->GetChain().Get() == this) member->SetChain(nullptr);
    }
}

EntitySet Chain::GetNeighbors(const EntityPtr& ent, bool all) const {
    CODE_ASSERTION(ent);
    const EntityList living = GetEntities();
    const auto found = std::find(living.begin(), living.end(), ent);
    // The ends hold on to other things than the chain, so they stand for themselves.
    if (found == living.end() || found == living.begin() || found + 1 == living.end()) return {};
    if (all) return {living.begin(), living.end()};
    return {*(found - 1), *(found + 1)};
}

}  // namespace app
