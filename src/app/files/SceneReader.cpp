#include "app/files/SceneReader.h"

#include <algorithm>
#include <cmath>

#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/EntityReader.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Expressions.h"
#include "script/Objects.h"
#include "script/Parser.h"
#include "script/Scopes.h"
#include "util/Assert.h"
#include "util/Guarded.h"

namespace app {

namespace {

// Lengths of the format without a version were a tenth of today's.
constexpr float OLD_SCALE = 10;

bool IsShape(const String& type) {
    return type == "polygon" || type == "circle" || type == "plane";
}

// What a file says is believed only within bounds; the test fails for a NaN.
void CheckLength(float value) {
    if (!(std::fabs(value) <= SceneReader::MAX_LENGTH)) {
        THROW(BadDataException, "Number out of range in scene file");
    }
}
void CheckLength(math::Vec2 v) {
    CheckLength(v.x);
    CheckLength(v.y);
}

void CheckExtent(float value) {
    CheckLength(value);
    if (std::fabs(value) > SceneReader::MAX_EXTENT) {
        THROW(BadDataException, "Number out of range in scene file");
    }
}

// Runs one piece of the reading, whose failure costs that piece alone.
template <class Function>
void Guarded(const Function& function) {
    util::Guarded(function, "An error occured while deserializing: ");
}

}  // namespace

SceneReader::SceneReader(Scene& scene)
    : m_scene(scene),
      m_guest(new script::Guest),
      m_closure(script::Parser::Instance().MakeGuestClosure(*m_guest, "Deserialize_closure")) {}

SceneReader::~SceneReader() = default;

void SceneReader::Read(const script::CodeBlock& code) {
    for (const script::ExpressionPtr& statement : code.GetExpressions()) {
        Guarded([&] {
            const script::GuestTurn turn(*m_guest);
            ReadStatement(statement);
        });
    }
    const physics::WorldGeomPtr world = physics::Simulation::Instance().GetWorldGeom();
    m_geoms[world->GetID()] = world;
    // Formulas on attributes are calculated here for the first time, at the file's cost.
    for (EntitySerializer& values : m_shapes) {
        Guarded([&] {
            const script::GuestTurn turn(*m_guest);
            DeserializeBody(values);
        });
    }
    BuildBodies();
    for (const EntitySerializer& values : m_others) Guarded([&] { DeserializeNonbody(values); });
    EnterScene();
    FinishChains();
}

void SceneReader::ReadStatement(const script::ExpressionPtr& statement) {
    if (auto declaration = util::DynamicCast<script::FunctionDeclaration>(statement)) {
        ReadEntity(*declaration);
    } else if (auto assignment = util::DynamicCast<script::Assignment>(statement)) {
        ReadAssignment(*assignment);
    } else {
        Log(logging::Warning, "Unknown garbage found in scene file: " + statement->ToCode());
    }
}

// The entity's values are the variables that its function leaves behind in the closure of the call.
void SceneReader::ReadEntity(script::FunctionDeclaration& declaration) {
    const auto function = util::DynamicCast<script::Function>(declaration.Evaluate(m_closure));
    function->Call({});
    EntitySerializer values;
    for (const script::VariablePtr& variable : function->GetCallClosure()->GetVariables()) {
        values[variable->GetName()] = variable->GetValue();
    }
    String type;
    ReadKey(values, "type", type);
    (IsShape(type) ? m_shapes : m_others).push_back(values);
}

void SceneReader::ReadAssignment(const script::Assignment& assignment) {
    if (assignment.GetIdentifier()->ToCode() != "version") {
        Log(logging::Warning, "Unknown constant declared in scene file: " + assignment.ToCode());
        return;
    }
    m_version = script::ObjectToValue<script::Int>(assignment.GetExpression()->Evaluate(m_closure));
}

float SceneReader::GetScale() const {
    return m_version == 0 ? OLD_SCALE : 1;
}

void SceneReader::DeserializeBody(EntitySerializer& values) {
    String type;
    ReadKey(values, "type", type);
    const GeomEntityPtr entity = BuildShape(type, values);
    if (!entity) {
        Log(logging::Warning, "Unknown body type: " + type);
        return;
    }
    PlaceShape(*entity, values);
    EnterShape(entity, values);
    LinkChain(entity, values);
}

GeomEntityPtr SceneReader::BuildShape(const String& type, const EntitySerializer& values) const {
    if (type == "polygon") return BuildPolygon(values);
    if (type == "circle") return BuildCircle(values);
    if (type == "plane") return BuildPlane(values);
    return nullptr;
}

GeomEntityPtr SceneReader::BuildPolygon(const EntitySerializer& values) const {
    math::Vec2List vecs;
    ReadKey(values, "vecs", vecs);
    if (vecs.size() > MAX_VERTICES) THROW(BadDataException, "Too many vertices in scene file");
    for (math::Vec2& vec : vecs) {
        vec *= GetScale();
        CheckLength(vec);
        CheckExtent(math::Length(vec - vecs.front()) / 2);
    }
    return new PolyEntity(new physics::Polygon(vecs, physics::Simulation::Instance().GetDefaultSurface()));
}

GeomEntityPtr SceneReader::BuildCircle(const EntitySerializer& values) const {
    float radius = 0;
    ReadKey(values, "radius", radius);
    radius *= GetScale();
    CheckExtent(radius);
    if (!(radius > 0)) THROW(BadDataException, "Circle without extent in scene file");
    return new CircleEntity(
        new physics::Circle(radius, {}, physics::Simulation::Instance().GetDefaultSurface()));
}

GeomEntityPtr SceneReader::BuildPlane(const EntitySerializer& values) const {
    math::Vec2 normal;
    float dist = 0;
    ReadKey(values, "normal", normal);
    ReadKey(values, "dist", dist);
    dist *= GetScale();
    CheckLength(normal);
    CheckLength(dist);
    const float length = math::Length(normal);
    if (math::IsZero(length)) THROW(BadDataException, "Plane without direction in scene file");
    // Distances rely on a unit normal. One that is unit but for rounding stays, so that files do not drift.
    constexpr float TOLERANCE = 1e-4f;
    if (std::fabs(length - 1) > TOLERANCE) {
        normal /= length;
        dist /= length;
    }
    return new PlaneEntity(
        new physics::Plane(normal, dist, physics::Simulation::Instance().GetDefaultSurface()));
}

void SceneReader::PlaceShape(GeomEntity& entity, EntitySerializer& values) const {
    if (HasKey(values, "pos")) {
        math::Vec2 pos;
        ReadKey(values, "pos", pos);
        pos *= GetScale();
        CheckLength(pos);
        values["pos"] = script::ValueToObject(pos);
    }
    if (HasKey(values, "angle")) {
        float angle = 0;
        ReadKey(values, "angle", angle);
        CheckLength(angle);
    }
    entity.Deserialize(values);
    if (!HasKey(values, "collide")) return;
    bool collide = true;
    ReadKey(values, "collide", collide);
    if (!collide) entity.m_collideSet->SetValue(script::ValueToObject(0));
}

void SceneReader::EnterShape(const GeomEntityPtr& entity, const EntitySerializer& values) {
    script::Int id = 0;
    ReadKey(values, "id", id);
    script::Int body = id;
    if (HasKey(values, "body")) ReadKey(values, "body", body);
    // The number 0 is the world's own. A shape without a number gets a body of its own.
    if (id == 0 && HasKey(values, "id")) Log(logging::Warning, "Couldn't find attribute id");
    if (id != 0) m_geoms[static_cast<unsigned int>(id)] = entity->GetGeom();
    m_entities.push_back(entity);
    if (body == 0 && !HasKey(values, "body")) return;
    m_bodies[static_cast<unsigned int>(body)].insert(entity->GetGeom());
}

void SceneReader::BuildBodies() {
    physics::Simulation& simulation = physics::Simulation::Instance();
    for (const auto& [number, geoms] : m_bodies) {
        if (number == 0) {
            simulation.GetWorldBody()->AddGeoms(geoms);
            continue;
        }
        const physics::BodyPtr body = new physics::Body;
        body->SetGeoms(geoms);
        simulation.AddBody(body);
    }
}

void SceneReader::DeserializeNonbody(const EntitySerializer& values) {
    String type;
    ReadKey(values, "type", type);
    if (type == "water") {
        DeserializeWater(values);
        return;
    }
    Log(logging::Warning, "Unknown entity: " + type);
}

void SceneReader::DeserializeWater(const EntitySerializer& values) const {
    math::Vec2List vecs;
    ReadKey(values, "vecs", vecs);
    for (const math::Vec2& vec : vecs) {
        Guarded([&] {
            const math::Vec2 pos = vec * GetScale();
            CheckLength(pos);
            physics::Simulation::Instance().AddParticle(new physics::Particle(pos, {}));
        });
    }
}

void SceneReader::LinkChain(const EntityPtr& entity, const EntitySerializer& values) {
    if (!HasKey(values, "chain") || !HasKey(values, "chainNr")) return;
    try {
        script::Int number = 0, place = 0;
        ReadKey(values, "chain", number);
        ReadKey(values, "chainNr", place);
        FindChain(static_cast<unsigned int>(number))->AddEntity(static_cast<unsigned int>(place), entity);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Bad chain");
    }
}

// The file's number is kept where the scene has no such chain yet.
ChainPtr SceneReader::FindChain(unsigned int number) {
    ChainPtr& chain = m_chains[number];
    if (chain) return chain;
    int free = m_scene.GetFreeChain();
    for (const auto& [_, other] : m_chains) {
        if (other) free = std::max(free, other->GetID() + 1);
    }
    chain = new Chain(m_scene.HasChain(static_cast<int>(number)) ? free : static_cast<int>(number));
    return chain;
}

void SceneReader::EnterScene() {
    for (const EntityPtr& entity : m_entities) {
        Guarded([&] { m_scene.AddEntity(entity); });
    }
}

void SceneReader::FinishChains() {
    for (const auto& [_, chain] : m_chains) {
        if (chain) chain->DropEmptyPlaces();
    }
}

}  // namespace app
