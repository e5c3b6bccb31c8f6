#pragma once

#include "app/Fwd.h"
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
    bool Take(math::Vec2 world);
    // Replaces the selection by copies of it.
    void Clone();
    void Hold();
    bool IsTaken() const;
    bool IsHolding() const { return m_holding; }

    // Moves every body once, however many of its shapes are selected, and the joints.
    void Transform(const math::RigidTransform& transform);

    void Finish(const char* undoName);  // lets go; the change goes to the undoer under this language key
    void Drop();                        // lets go; nothing is said about it
    void Revert();                      // lets go and puts the scene back as it was when taken

  private:
    void Release();

    Scene& m_scene;
    SnapshotPtr m_before;        // of the moment of taking; null while idle
    EntityList m_entities;       // held, in scene order
    physics::BodyList m_bodies;  // of m_entities, each once
    bool m_holding = false;
};

}  // namespace app
