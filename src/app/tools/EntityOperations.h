#pragma once

#include "app/Fwd.h"

namespace app {

class View;

// What the user does to entities without a gesture. Each is a step of the history, and takes the entities
// of the set that are in the scene.

void EraseSet(Scene& scene, const EntitySet& entities);
// The copies stand a centimetre of the screen to the right and below, and are selected.
void CloneSet(Scene& scene, const View& view, const EntitySet& entities);
void MoveToBack(Scene& scene, const EntitySet& entities);
void MoveToFront(Scene& scene, const EntitySet& entities);

// Polygons become circles of the same area about their centres of mass. Asserts exactly one, a polygon.
void TransformIntoCircle(Scene& scene, const EntitySet& entities);
// Each polygon of the set gets a hinge in its centre of mass, to what lies below it there or to the world.
void CenterHinge(Scene& scene, const View& view, const EntitySet& entities);
// The links of their chains stand for themselves from now on.
void DissolveChain(Scene& scene, const EntitySet& entities);
// Shapes become water: at most `maxDrops` of each.
void Liquify(Scene& scene, const EntitySet& entities, int maxDrops);

}  // namespace app
