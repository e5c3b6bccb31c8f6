#include "app/App.h"

#include <algorithm>
#include <cmath>

#include "app/AppGUI.h"
#include "app/drawing/WaterPainter.h"
#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "app/history/Actions.h"
#include "app/history/Undoer.h"
#include "input/Input.h"
#include "input/Key.h"
#include "logging/Log.h"
#include "math/Color.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "util/Assert.h"
#include "util/Exception.h"
#include "util/ProfileTree.h"

// The scene and its settings; the view stands in AppView.cpp.
namespace app {

App::App()
    : Component("App"),
      m_language(script::DeclareAttrib(*this, "language", "English")),
      m_lineWidth(script::DeclareAttrib(*this, "lineWidth", 4.0f)),
      m_pointSize(script::DeclareAttrib(*this, "pointSize", 4.0f)),
      m_drawOBBs(script::DeclareAttrib(*this, "drawOBBs", false)),
      m_drawMapOBBs(script::DeclareAttrib(*this, "drawMapOBBs", false)),
      m_drawBCs(script::DeclareAttrib(*this, "drawBCs", false)),
      m_drawVertices(script::DeclareAttrib(*this, "drawVertices", false)),
      m_drawCollisions(script::DeclareAttrib(*this, "drawCollisions", false)),
      m_drawParticleCenters(script::DeclareAttrib(*this, "drawParticleCenters", false)),
      m_drawBodyCenters(script::DeclareAttrib(*this, "drawBodyCenters", false)),
      m_drawClouds(script::DeclareAttrib(*this, "drawClouds", true)),
      m_polyTCFactor(script::DeclareAttrib(*this, "polyTCFactor", math::Vec2(10, 10))),
      m_selectColor(script::DeclareAttrib(*this, "selectColor", math::Vec3(1, 0.5f, 0.5f))),
      m_fadeColor(script::DeclareAttrib(*this, "fadeColor", math::Vec3(0, 0, 0))),
      m_fadeScale(script::DeclareAttrib(*this, "fadeScale", math::Vec2(0.95f, 0.95f))),
      m_fadeTranslate(script::DeclareAttrib(*this, "fadeTranslate", math::Vec2(0, 0))),
      m_fadeRotate(script::DeclareAttrib(*this, "fadeRotate", 0.0f)),
      m_minPointDist(script::DeclareAttrib(*this, "minPointDist", 0.2f)),
      m_maxPointDist(script::DeclareAttrib(*this, "maxPointDist", 0.5f)),
      m_DPI(script::DeclareAttrib(*this, "DPI", 86.0f)),
      m_maxSPHSpawn(script::DeclareAttrib(*this, "maxSPHSpawn", 10000)),
      m_waterElongation(script::DeclareAttrib(*this, "waterElongation", 0.05f)),
      m_waterMaxElongation(script::DeclareAttrib(*this, "waterMaxElongation", 2.0f)),
      m_metaCutoff(script::DeclareAttrib(*this, "metaCutoff", 0.5f)),
      m_borderWidth(script::DeclareAttrib(*this, "borderWidth", 0.1f)),
      m_maxUndo(script::DeclareAttrib(*this, "maxUndo", 10u)),
      m_autosaveTime(script::DeclareAttrib(*this, "autosaveTime", 30.0f)),
      m_chainDensityFactor(script::DeclareAttrib(*this, "chainDensityFactor", 20.0f)),
      m_dragToolStrength(script::DeclareAttrib(*this, "dragToolStrength", 0.25f)),
      m_waterColor(script::DeclareAttrib(*this, "waterColor", math::Vec4(0.1f, 0.1f, 1, 0.7f))),
      m_simpleWater(script::DeclareAttrib(*this, "simpleWater", false)),
      m_waterFanceyFactor(script::DeclareAttrib(*this, "waterFanceyFactor", 10.0f)),
      m_borders(script::DeclareAttrib(*this, "borders", true)),
      m_guiSettings(new AppGUISettings) {
    SetFillParent(true);
    AddReflected(m_guiSettings);
    AddCommands();
    physics::Simulation::Instance().m_running->AddOnChange(
        new util::Callback([this] { OnRunningChange(); }, this));
    MakeDrawingResources();
}

App::~App() noexcept(false) = default;

void App::AddCommands() {
    AddCmd("undo", [] { Undoer::Instance().Undo(); });
    AddCmd("redo", [] { Undoer::Instance().Redo(); });
    AddCmd("snapshot", this, &App::TakeSnapshot);
}

// ---- each frame

void App::Update(float dt) {
    PROFILE_SECTION("App::Update");
    try {
        UpdateView();
        Component::Update(dt);
        if (dt > 0) PanByKeys(dt);
        physics::Simulation::Instance().Update(dt);
        UpdateEntities(dt);
        FlushBodies();
        Undoer::Instance().Trim();
        CopyContacts();
        KeepZoomInBounds();
        CODE_ASSERTION(IsFinite(GetMousePos()));
        FollowTrackedEntity();
        if (m_background) m_background->Update(dt);
    }
    PASS_ON_EXCEPTIONS
}

// An entity may die, or have others added and removed, while it is updated.
void App::UpdateEntities(float dt) {
    EntitySet dead;
    for (size_t i = 0; i < m_entities.size(); ++i) {
        const EntityPtr entity = m_entities[i];
        if (entity->IsAlive()) {
            entity->Update(dt);
        } else {
            dead.insert(entity);
        }
    }
    if (!dead.empty()) RetireDead(dead);
}

void App::RetireDead(const EntitySet& dead) {
    m_entities.erase(std::remove_if(m_entities.begin(), m_entities.end(),
                                    [&dead](const EntityPtr& entity) { return dead.count(entity) != 0; }),
                     m_entities.end());
    for (const EntityPtr& entity : dead) {
        m_selection.Remove(entity);
        entity->RemoveFromSimulation();
        if (entity == m_trackedEntity) m_trackedEntity = nullptr;
    }
}

void App::CopyContacts() {
    m_contacts.clear();
    for (const physics::ContactPtr& contact : physics::Simulation::Instance().GetContacts()) {
        m_contacts.push_back({contact->m_point, contact->m_normal});
    }
}

void App::FlushBodies() {
    try {
        physics::Simulation& simulation = physics::Simulation::Instance();
        std::vector<const physics::Body*> needed;
        for (const EntityPtr& entity : m_entities) {
            entity->UpdateBodyPtr();
            const auto* const shape = dynamic_cast<const GeomEntity*>(entity.Get());
            if (shape != nullptr) needed.push_back(shape->GetBody().Get());
        }
        std::sort(needed.begin(), needed.end());
        physics::BodyList unneeded;
        for (const physics::BodyPtr& body : simulation.GetBodies()) {
            if (!std::binary_search(needed.begin(), needed.end(), body.Get())) unneeded.push_back(body);
        }
        for (const physics::BodyPtr& body : unneeded) {
            if (IsPlaceholder(*body)) continue;
            simulation.RemoveBody(body);
        }
    }
    PASS_ON_EXCEPTIONS
}

// A body of nothing but a world geom is what tools pull at: it needs no entity. The world body without
// fixed shapes is one too, and otherwise the simulation refuses to remove it.
bool App::IsPlaceholder(const physics::Body& body) {
    if (body.GetGeoms().size() != 1) return false;
    return dynamic_cast<const physics::WorldGeom*>(body.GetGeoms().begin()->Get()) != nullptr;
}

// ---- the scene

void App::AddEntity(const EntityPtr& entity) {
    CODE_ASSERTION(entity);
    m_entities.push_back(entity);
    entity->AddToSimulation();
    if (entity->IsTracked()) Track(entity);
}

void App::RemoveEntity(const EntityPtr& entity) {
    const auto found = std::find(m_entities.begin(), m_entities.end(), entity);
    if (found != m_entities.end()) m_entities.erase(found);
    m_selection.Remove(entity);
    if (entity == m_trackedEntity) m_trackedEntity = nullptr;
    entity->RemoveFromSimulation();
}

// The bodies go first: taking shapes out of a body one by one would compute it anew each time.
void App::Clear() {
    physics::Simulation::Instance().Clear();
    EntityList entities;
    entities.swap(m_entities);
    m_selection.Clear();
    m_trackedEntity = nullptr;
    for (const EntityPtr& entity : entities) entity->RemoveFromSimulation();
}

void App::SetEntityOrder(const EntityList& entities) {
    CODE_ASSERTION(entities.size() == m_entities.size());
    m_entities = entities;
}

bool App::HasEntity(const EntityPtr& entity) const {
    return std::find(m_entities.begin(), m_entities.end(), entity) != m_entities.end();
}

EntityPtr App::GetEntityAt(math::Vec2 world) const {
    const auto found = std::find_if(m_entities.rbegin(), m_entities.rend(), [world](const EntityPtr& entity) {
        return entity->IsPointInside(world);
    });
    return found == m_entities.rend() ? nullptr : *found;
}

EntityList App::GetEntitiesAt(math::Vec2 world) const {
    EntityList found;
    std::copy_if(m_entities.rbegin(), m_entities.rend(), std::back_inserter(found),
                 [world](const EntityPtr& entity) { return entity->IsPointInside(world); });
    return found;
}

GeomList App::GetGeomsAt(math::Vec2 world) const {
    GeomList geoms;
    for (const EntityPtr& entity : GetEntitiesAt(world)) {
        if (const auto shape = util::DynamicCast<GeomEntity>(entity)) geoms.push_back(shape->GetGeom());
    }
    geoms.push_back(physics::Simulation::Instance().GetWorldGeom());
    return geoms;
}

void App::Track(const EntityPtr& entity) {
    if (m_trackedEntity && m_trackedEntity != entity) m_trackedEntity->SetTracked(false);
    m_trackedEntity = entity;
    if (entity) entity->SetTracked(true);
}

void App::HoldBodies(const physics::BodyList& bodies) {
    for (const physics::BodyPtr& body : bodies) body->SetHeld(true);
}

void App::ReleaseBodies(const physics::BodyList& bodies) {
    for (const physics::BodyPtr& body : bodies) body->SetHeld(false);
}

int App::GetFreeGroup() const {
    int free = 0;
    for (const EntityPtr& entity : m_entities) {
        if (entity->HasGroup()) free = std::max(free, entity->GetGroup() + 1);
    }
    return free;
}

int App::GetFreeChain() const {
    int free = 0;
    for (const EntityPtr& entity : m_entities) {
        if (entity->GetChain()) free = std::max(free, entity->GetChain()->GetID() + 1);
    }
    return free;
}

bool App::HasChain(int id) const {
    return std::any_of(m_entities.begin(), m_entities.end(), [id](const EntityPtr& entity) {
        return entity->GetChain() && entity->GetChain()->GetID() == id;
    });
}

math::Vec3 App::GetNextColor() {
    const float hue = m_random.GetUniform(0, 360);
    const float saturation = m_random.GetUniform(0.5f, 0.9f);
    const float lightness = m_random.GetUniform(0.45f, 0.7f);
    return math::HSLtoRGB({hue, saturation, lightness});
}

// ---- history

void App::ClearScene() {
    m_onInterrupt.CallAll();
    const SnapshotPtr before = new Snapshot;
    Clear();
    ZoomToScene();
    Undoer::Instance().AddRestorer(before, "UndoClear");
}

void App::TakeSnapshot() {
    Undoer::Instance().Do(new SnapshotAction("UndoSnapshot", new Snapshot));
}

void App::RunSimulation() {
    physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(true));
}

void App::StopSimulation() {
    physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(false));
}

void App::OnRunningChange() {
    if (physics::Simulation::Instance().m_running->Get()) Undoer::Instance().Do(new SimStart);
}

}  // namespace app
