#pragma once

#include <vector>

#include "app/Fwd.h"
#include "app/entities/Entity.h"
#include "math/RigidTransform.h"
#include "physics/Fwd.h"

namespace app {

// What moving and turning the selection share: taking it, holding its bodies against the simulation,
// transforming it, letting go, and the way back.
class SelectionDrag {
  public:
    explicit SelectionDrag(Scene& scene);
    ~SelectionDrag();

    // Takes the entity under the point with all that is selected; one that is not selected is selected
    // first. The selection comes to the top of the scene. False, and nothing is taken, where there is none.
    // If in the end nothing has moved, selection, order and motion are as they were, and no step is left.
    bool Take(math::Vec2 world);
    // Replaces the selection by copies of it.
    void Clone();
    void Hold();
    bool IsTaken() const;
    bool IsHolding() const { return m_holding; }

    // Moves every body once, however many of its shapes are selected, and the joints.
    void Transform(const math::RigidTransform& transform);

    void Finish(const char* undoName);  // lets go; a change goes to the undoer under this language key
    void Revert();                      // lets go and puts the scene back as it was when taken

  private:
    void FindPins();
    void Release();
    void PutBack();

    Scene& m_scene;
    struct Motion {
        physics::BodyPtr m_body;
        math::Vec2 m_vel;
        math::real m_angVel;
    };

    SnapshotPtr m_before;   // of the moment of taking; null while idle
    EntityList m_oldOrder;  // of the scene; these two are of the moment of taking as well
    EntitySet m_oldSelection;
    EntitySet m_clones;             // that this drag made
    std::vector<Motion> m_motions;  // of m_bodies, before they were held
    bool m_moved = false;
    EntityList m_entities;               // held, in scene order
    physics::BodyList m_bodies;          // of m_entities, each once
    std::vector<HingeEntityPtr> m_pins;  // that go along, besides those among m_entities
    bool m_holding = false;
};

}  // namespace app
