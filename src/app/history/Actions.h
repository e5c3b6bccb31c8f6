#pragma once

#include "app/Fwd.h"
#include "app/entities/Entity.h"
#include "app/history/Snapshot.h"
#include "app/scene/SceneSettings.h"
#include "math/Matrix3.h"
#include "util/Pointee.h"

namespace app {

// One step of the history. The name is a key of the language files, such as "UndoMove", and is not copied.
class Action : public util::Pointee {
  public:
    explicit Action(const char* name) : m_name(name) {}

    virtual void Do() = 0;
    virtual void Undo() = 0;
    virtual void Redo() { Do(); }
    // Whether doing it leaves the scene alone, so that a gesture under way may go on.
    virtual bool KeepsScene() const { return false; }

    // Whether `next` adds nothing to this action, so that one step undoes both.
    virtual bool Absorbs(const Action& /*next*/) const { return false; }

    const char* GetName() const { return m_name; }

  private:
    const char* m_name;
};

// Marks a moment. Stepping over it in either direction lands at that moment, in redo too.
class SnapshotAction : public Action {
  public:
    SnapshotAction(const char* name, const SnapshotPtr& snapshot) : Action(name), m_snapshot(snapshot) {}

    void Do() override {}
    void Undo() override { m_snapshot->Restore(); }
    void Redo() override { m_snapshot->Restore(); }
    bool KeepsScene() const override { return true; }

  private:
    SnapshotPtr m_snapshot;
};

// A change between two known states.
class SnapshotRestorer : public Action {
  public:
    SnapshotRestorer(const char* name, const SnapshotPtr& before, const SnapshotPtr& after)
        : Action(name), m_before(before), m_after(after) {}

    void Do() override { m_after->Restore(); }
    void Undo() override { m_before->Restore(); }

  private:
    SnapshotPtr m_before;
    SnapshotPtr m_after;
};

// Puts another scene in the place of this one. The name goes with it, and where the user looks, for the other
// scene may be far from there; what these have become meanwhile comes back by redo.
class SceneExchange : public Action {
  public:
    SceneExchange(const char* name, Scene& scene, View& view) : Action(name), m_scene(scene), m_view(view) {}

    void Do() override;
    void Undo() override;
    void Redo() override;

  protected:
    virtual void Exchange() = 0;

    Scene& m_scene;
    View& m_view;

  private:
    struct Side {
        SnapshotPtr m_snapshot;
        String m_name;
        math::TMatrix3<float> m_worldToGUI;
    };
    Side Take() const;
    void Restore(const Side& side) const;

    Side m_before;
    Side m_after;  // empty until it is undone
};

// An empty scene without settings of its own.
class ClearScene : public SceneExchange {
  public:
    ClearScene(Scene& scene, View& view) : SceneExchange("UndoClear", scene, view) {}

  private:
    void Exchange() override;
};

// Removes entities. What the joints beside them make of it depends on where everything is at that moment, so
// a redo brings back what the erasure left. Undoing a redo goes back to the moment before it.
class EraseEntities : public Action {
  public:
    EraseEntities(Scene& scene, const EntitySet& entities)
        : Action("UndoErase"), m_scene(scene), m_entities(entities) {}

    void Do() override;
    void Undo() override { m_snapshot->Restore(); }
    void Redo() override;

  private:
    Scene& m_scene;
    SnapshotPtr m_snapshot;
    SnapshotPtr m_after;
    EntitySet m_entities;
};

// Makes gravity, air and water the scene's own, or, where they are, the user's again.
class ToggleSceneSettings : public Action {
  public:
    explicit ToggleSceneSettings(SceneSettings& settings)
        : Action("UndoSceneSettings"), m_settings(settings) {}

    void Do() override;
    void Undo() override;
    void Redo() override { Undo(); }
    bool KeepsScene() const override { return true; }

  private:
    SceneSettings& m_settings;
    SceneSettings::Bundle m_otherBundle;  // as they were on the other side of this step
    SceneSettings::Values m_otherUsers;
};

// The start of the simulation: undo goes back to that moment and stops it. Redo leaves `running` as it is.
// Starts with no other action between them are one.
class SimStart : public Action {
  public:
    explicit SimStart(Scene& scene) : Action("UndoSimStart"), m_snapshot(new Snapshot(scene)) {}

    void Do() override {}
    void Undo() override;
    void Redo() override { m_snapshot->Restore(); }
    bool KeepsScene() const override { return true; }
    bool Absorbs(const Action& next) const override;

  private:
    SnapshotPtr m_snapshot;
};

}  // namespace app
