#pragma once

#include "app/AppGUISettings.h"
#include "app/Fwd.h"
#include "app/scene/Selection.h"
#include "gui/Component.h"
#include "math/BoundingBox.h"
#include "math/Matrix3.h"
#include "rendering/Texture.h"
#include "script/Attributes.h"
#include "util/Interpolator.h"
#include "util/Random.h"
#include "util/Singleton.h"

namespace app {

class WaterPainter;
struct WaterView;

// A contact as the debug view shows it.
struct ContactMark {
    math::Vec2 m_point;
    math::Vec2 m_normal;
};

// The world view: it owns the entities of the scene and the view on them, and holds the settings of the
// application. In scripts "App".
//
// Once a frame Update advances the tools and widgets above it, then the physics, then the entities; retires
// those that are not alive any more; frees bodies that no entity needs; and keeps the view in bounds.
// Entities are added and removed between updates, or from inside one by dying: RemoveEntity is for callers
// outside the pass over the entities.
//
// It works without a window and without GL: only drawing needs those, and drawing makes its resources
// itself. Without a parent its size has to be set by SetSize, or the view has no middle.
//
// World coordinates are metres with y up; GUI coordinates have y down. So the view's matrix has the scale
// as its first element and minus the scale as the second of the diagonal.
class App : public gui::Component, public util::Singleton<App> {
  public:
    App();
    ~App() noexcept(false) override;

    // ---- each frame

    void Update(float dt) override;  // seconds
    void DrawComp() override;

    // ---- the view

    static constexpr float GetMinZoom() { return 1.5f; }  // GUI units per metre
    static constexpr float GetMaxZoom() { return 3000; }
    static constexpr float GetDefaultZoom() { return 150; }

    math::Vec2 GUIToWorld(const math::Vec2& gui) const;
    math::Vec2 WorldToGUI(const math::Vec2& world) const { return m_worldToGUI(world); }
    const math::TMatrix3<float>& GetWorldToGUI() const { return m_worldToGUI; }
    // Where the view is going; what changes the view starts from here.
    const math::TMatrix3<float>& GetTargetWorldToGUI() const { return m_view.GetTarget(); }
    // Animated within 0.1 s, or at once. A scale of zero or not finite is refused with a warning.
    void SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate = true);

    float GetZoom() const { return m_worldToGUI.m[0][0]; }
    void SetZoom(float scale);                     // about the middle
    void ZoomAbout(math::Vec2 gui, float factor);  // the world under that point stays there
    // Moves the picture by GUI units; under the mouse at once, or the ground would trail behind it.
    void Pan(float x, float y, bool animate = true);
    void ZoomToScene();  // to all entities with finite extents; to the default view when there are none
    void SetDefaultView(bool animate);

    math::Vec2 GetMiddle() const { return GetSize() * 0.5f; }  // of the component, GUI units
    math::Vec2 GetMousePos() const;                            // world
    math::BoundingBox2f GetViewBox() const;                    // the visible part of the world
    float GetWorldPerGUI() const;  // world units per GUI unit, from the inverse of the view
    float GetCmToWorld() const;    // world units per centimetre on the screen, by DPI

    // ---- the scene

    const EntityList& GetEntities() const { return m_entities; }
    void AddEntity(const EntityPtr& entity);     // on top; into the simulation as well
    void RemoveEntity(const EntityPtr& entity);  // at once; out of the simulation as well
    void Clear();                                // all entities, the selection, the tracking
    // A new order of the same entities; for moving some to the front or back.
    void SetEntityOrder(const EntityList& entities);

    bool HasEntity(const EntityPtr& entity) const;
    bool HasChain(int id) const;
    EntityPtr GetEntityAt(math::Vec2 world) const;     // the topmost, or null
    EntityList GetEntitiesAt(math::Vec2 world) const;  // topmost first
    GeomList GetGeomsAt(math::Vec2 world) const;       // topmost first; the world geom comes last

    Selection& GetSelection() { return m_selection; }
    const Selection& GetSelection() const { return m_selection; }

    // The one entity that the view follows; null for none. Sets and clears the entities' own flags.
    void Track(const EntityPtr& entity);
    const EntityPtr& GetTrackedEntity() const { return m_trackedEntity; }

    // Takes bodies out of the simulation's hands for a drag, and gives them back.
    void HoldBodies(const physics::BodyList& bodies);
    void ReleaseBodies(const physics::BodyList& bodies);

    // Removes bodies whose last shape has gone.
    void FlushBodies();
    // A start is a step of the history, however `Sim.running` comes to be true.
    void RunSimulation();
    void StopSimulation();
    // Empties the scene as a step of the history.
    void ClearScene();
    void TakeSnapshot();  // a mark in the history
    // One past the greatest group or chain number in the scene.
    int GetFreeGroup() const;
    int GetFreeChain() const;

    math::Vec3 GetNextColor();  // for a new entity
    util::Random& GetRandom() { return m_random; }
    const std::vector<ContactMark>& GetContactPoints() const { return m_contacts; }

    // ---- the interface

    // Builds toolbars and menus, anew if they exist.
    void CreateGUI();
    const AppGUIPtr& GetAppGUI() const { return m_appGUI; }
    AppGUISettings& GetGUISettings() const { return *m_guiSettings; }
    // Saves the scene for the next start and drops the autosaved one.
    void OnExit();
    // Fired before a step of the history or a load replaces the scene: whoever has a gesture under way
    // drops it, for its entities and bodies are about to go.
    util::CallbackSet& GetOnInterrupt() { return m_onInterrupt; }

    // ---- settings, in the order in which they are declared

    const script::AttribPtr<String> m_language;
    const script::AttribPtr<float> m_lineWidth;  // pixels
    const script::AttribPtr<float> m_pointSize;  // pixels
    const script::AttribPtr<bool> m_drawOBBs;
    const script::AttribPtr<bool> m_drawMapOBBs;
    const script::AttribPtr<bool> m_drawBCs;
    const script::AttribPtr<bool> m_drawVertices;
    const script::AttribPtr<bool> m_drawCollisions;
    const script::AttribPtr<bool> m_drawParticleCenters;
    const script::AttribPtr<bool> m_drawBodyCenters;
    const script::AttribPtr<bool> m_drawClouds;
    const script::AttribPtr<math::Vec2> m_polyTCFactor;  // without effect; settings files name it
    const script::AttribPtr<math::Vec3> m_selectColor;
    const script::AttribPtr<math::Vec3> m_fadeColor;
    const script::AttribPtr<math::Vec2> m_fadeScale;
    const script::AttribPtr<math::Vec2> m_fadeTranslate;
    const script::AttribPtr<float> m_fadeRotate;    // degrees
    const script::AttribPtr<float> m_minPointDist;  // cm on the screen
    const script::AttribPtr<float> m_maxPointDist;  // cm on the screen
    const script::AttribPtr<float> m_DPI;
    const script::AttribPtr<int> m_maxSPHSpawn;  // drops that one shape may turn into
    const script::AttribPtr<float> m_waterElongation;
    const script::AttribPtr<float> m_waterMaxElongation;
    const script::AttribPtr<float> m_metaCutoff;
    const script::AttribPtr<float> m_borderWidth;     // cm on the screen
    const script::AttribPtr<unsigned int> m_maxUndo;  // steps
    const script::AttribPtr<float> m_autosaveTime;    // s
    const script::AttribPtr<float> m_chainDensityFactor;
    const script::AttribPtr<float> m_dragToolStrength;
    const script::AttribPtr<math::Vec4> m_waterColor;
    const script::AttribPtr<bool> m_simpleWater;
    const script::AttribPtr<float> m_waterFanceyFactor;
    const script::AttribPtr<bool> m_borders;

  private:
    void AddCommands();
    void OnRunningChange();
    // AppDrawing.cpp. The first one makes the background and the painters, and touches no GL.
    void MakeDrawingResources();
    WaterView GetWaterView() const;
    bool HasWaterField() const;
    void DrawFade();
    void CaptureFade();
    void DrawWater();
    void DrawEntities();
    void DrawDebugViews();

    void UpdateView();
    void PanByKeys(float dt);
    void UpdateEntities(float dt);
    void RetireDead(const EntitySet& dead);
    static bool IsPlaceholder(const physics::Body& body);
    void CopyContacts();
    void KeepZoomInBounds();
    void FollowTrackedEntity();

    EntityList m_entities;
    Selection m_selection;
    std::vector<ContactMark> m_contacts;  // of this frame, for the debug view
    EntityPtr m_trackedEntity;
    util::Interpolator<math::TMatrix3<float>> m_view;
    math::TMatrix3<float> m_worldToGUI;  // the present value of m_view
    AppGUIPtr m_appGUI;                  // null until CreateGUI
    AppGUISettingsPtr m_guiSettings;
    gui::ComponentPtr m_background;  // no child: DrawComp draws it below the scene
    util::Random m_random;
    util::CallbackSet m_onInterrupt;

    util::SharedPtr<WaterPainter> m_waterPainter;
    rendering::TextureMentorPtr m_fadeTexture;  // the last frame; null until fading is first asked for
    uint32_t m_fadeGeneration = 0;              // of the context that m_fadeTexture has a frame of
};

}  // namespace app
