#include "app/files/SceneReader.h"

#include <algorithm>
#include <cmath>

#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/EntityReader.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Attributes.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Objects.h"
#include "script/Parser.h"
#include "script/Scopes.h"
#include "util/Assert.h"
#include "util/Clock.h"
#include "util/Guarded.h"

namespace app {

namespace {

// Lengths of the format without a version are a tenth of version 1's.
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
      m_takenGroups(scene.GetGroups()),
      m_takenChains(scene.GetChains()),
      m_guest(new script::Guest),
      m_closure(script::Parser::Instance().MakeGuestClosure(*m_guest, "Deserialize_closure")),
      m_begin(util::Clock::Now()),
      m_lastTold(m_begin) {}

SceneReader::~SceneReader() = default;

void SceneReader::Read(const script::CodeBlock& code) {
    m_allSteps = 2 * code.GetExpressions().size() + 1;
    ReadStatements(code);
    SortShapes();
    const physics::WorldGeomPtr world = physics::Simulation::Instance().GetWorldGeom();
    m_geoms[world->GetID()] = world;
    // Formulas on attributes are calculated here for the first time, at the file's cost.
    const auto build = [this](void (SceneReader::*step)(Record&), Record& record) {
        Guarded([&] {
            const script::GuestTurn turn(*m_guest);
            (this->*step)(record);
        });
        TellProgress();
    };
    for (Record& record : m_shapes) {
        if (!IsFull()) build(&SceneReader::DeserializeBody, record);
    }
    BuildBodies();
    for (Record& record : m_others) build(&SceneReader::DeserializeNonbody, record);
    FinishChains();
    EnterScene();
    if (m_scene.GetLoadedPart() < 100) m_scene.SetLoadedPart(100);
}

// A file may be nothing but such: after many of them they are failures, which are all alike.
void SceneReader::Warn(const String& text) const {
    m_guest->NoteFailure();
    Log(logging::Warning, text);
}

void SceneReader::TellProgress() {
    constexpr double PATIENCE = 0.3, INTERVAL = 0.1;  // s
    ++m_steps;
    const double now = util::Clock::Now();
    const bool isTold = m_scene.GetLoadedPart() < 100;  // the parsing was, already
    if ((!isTold && now < m_begin + PATIENCE) || now < m_lastTold + INTERVAL) return;
    m_lastTold = now;
    constexpr size_t REST = 99 - PARSING_SHARE;
    m_scene.SetLoadedPart(PARSING_SHARE + static_cast<int>(std::min(REST * m_steps / m_allSteps, REST)));
}

void SceneReader::ReadStatements(const script::CodeBlock& code) {
    for (const script::ExpressionPtr& statement : code.GetExpressions()) {
        if (m_place == MAX_ENTITIES) {
            Log(logging::Warning, "The scene is too large: the rest of it is left out");
            return;
        }
        Guarded([&] {
            const script::GuestTurn turn(*m_guest);
            ReadStatement(statement);
        });
        TellProgress();
    }
}

void SceneReader::ReadStatement(const script::ExpressionPtr& statement) {
    if (auto declaration = util::DynamicCast<script::FunctionDeclaration>(statement)) {
        ReadEntity(*declaration);
    } else if (auto assignment = util::DynamicCast<script::Assignment>(statement)) {
        ReadAssignment(*assignment);
    } else {
        Warn("Unknown garbage found in scene file: " + statement->ToCode());
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
    (IsShape(type) ? m_shapes : m_others).push_back({m_place++, type, values});
}

// Geoms and bodies get new numbers, but in the order of the old ones: sums and contacts run in that order,
// and with it the last bits of a run.
void SceneReader::SortShapes() {
    const auto number = [](const Record& record) {
        script::Int id = 0;
        const auto found = record.m_values.find("id");
        if (found != record.m_values.end()) {
            if (const auto* const value = script::ValueOf<script::Int>(found->second)) id = *value;
        }
        return id;
    };
    std::stable_sort(m_shapes.begin(), m_shapes.end(),
                     [&](const Record& a, const Record& b) { return number(a) < number(b); });
}

void SceneReader::ReadAssignment(const script::Assignment& assignment) {
    if (assignment.GetIdentifier()->ToCode() != "version") {
        Warn("Unknown constant declared in scene file: " + assignment.ToCode());
        return;
    }
    m_version = script::ObjectToValue<script::Int>(assignment.GetExpression()->Evaluate(m_closure));
}

float SceneReader::GetScale() const {
    return m_version == 0 ? OLD_SCALE : 1;
}

void SceneReader::DeserializeBody(Record& record) {
    EntitySerializer& values = record.m_values;
    const GeomEntityPtr entity = BuildShape(record.m_type, values);
    if (!entity) {
        Warn("Unknown body type: " + record.m_type);
        return;
    }
    RenumberGroup(values);
    PlaceShape(*entity, values);
    EnterShape(entity, values);
    Enter(entity, record);
}

void SceneReader::Enter(const EntityPtr& entity, const Record& record) {
    m_entities[record.m_place] = entity;
    LinkChain(entity, record.m_values);
}

// A number that the scene has already would tie the file's group or chain to the scene's.
script::Int SceneReader::Renumber(NumberMap& numbers, std::set<script::Int>& taken, script::Int number) {
    const auto found = numbers.find(number);
    if (found != numbers.end()) return found->second;
    const script::Int fresh = taken.count(number) ? Scene::LowestFree(taken) : number;
    taken.insert(fresh);
    numbers[number] = fresh;
    return fresh;
}

void SceneReader::RenumberGroup(EntitySerializer& values) {
    if (!HasKey(values, "group")) return;
    script::Int group = Entity::NO_GROUP;
    ReadKey(values, "group", group);
    if (group == Entity::NO_GROUP) return;
    values["group"] = script::ValueToObject(Renumber(m_groups, m_takenGroups, group));
}

GeomEntityPtr SceneReader::BuildShape(const String& type, const EntitySerializer& values) {
    if (type == "polygon") return BuildPolygon(values);
    if (type == "circle") return BuildCircle(values);
    if (type == "plane") return BuildPlane(values);
    return nullptr;
}

// A polygon takes time with the square of its vertices, and memory for its distance map.
void SceneReader::ChargePolygon(size_t vertices) {
    ++m_numPolygons;
    m_vertexPairs += vertices * vertices;
    if (IsFull()) THROW(BadDataException, "The scene is too large: the rest of its shapes is left out");
}

bool SceneReader::IsFull() const {
    return m_numPolygons > MAX_POLYGONS || m_vertexPairs > MAX_VERTEX_PAIRS;
}

// The outline stands in the file round the place of the shape. Taken from that in double, the vertices are
// exactly those that were written.
GeomEntityPtr SceneReader::BuildPolygon(const EntitySerializer& values) {
    script::ObjectList vecs;
    ReadKey(values, "vecs", vecs);
    if (vecs.size() > MAX_VERTICES) THROW(BadDataException, "Too many vertices in scene file");
    ChargePolygon(vecs.size());
    math::Vec2 pos;
    if (HasKey(values, "pos")) ReadKey(values, "pos", pos);
    pos *= GetScale();
    math::Vec2List outline;
    for (const script::ObjectPtr& object : vecs) {
        const auto vec = script::ObjectToValue<script::ObjectList>(object);
        if (vec.size() != 2) THROW(script::ScriptException, "Not a vector");
        const double x = script::ObjectToValue<double>(vec[0]) * double(GetScale());
        const double y = script::ObjectToValue<double>(vec[1]) * double(GetScale());
        CheckLength(math::Vec2(static_cast<float>(x), static_cast<float>(y)));
        outline.push_back({static_cast<float>(x - double(pos.x)), static_cast<float>(y - double(pos.y))});
        CheckExtent(math::Length(outline.back() - outline.front()) / 2);
    }
    return new PolyEntity(new physics::Polygon(outline, physics::Simulation::Instance().GetDefaultSurface()));
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
        double angle = 0;
        ReadKey(values, "angle", angle);
        CheckLength(static_cast<float>(angle));
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

void SceneReader::DeserializeNonbody(Record& record) {
    if (record.m_type == "water") {
        DeserializeWater(record.m_values);
        return;
    }
    if (record.m_type == "settings") {
        ReadSettings(record.m_values);
        return;
    }
    const JointEntityPtr joint = BuildJoint(record.m_type, record.m_values);
    if (!joint) {
        Warn("Unknown entity: " + record.m_type);
        return;
    }
    TieJoint(*joint, record.m_values);
    RenumberGroup(record.m_values);
    // Brings the length of a spring at rest, for which the present one stands so far.
    joint->Deserialize(record.m_values);
    Enter(joint, record);
}

JointEntityPtr SceneReader::BuildJoint(const String& type, const EntitySerializer& values) const {
    if (type != "hinge" && type != "fixjoint" && type != "spring") return nullptr;
    float size = 0;
    ReadKey(values, "size", size);
    size *= GetScale();
    CheckLength(size);
    if (type == "hinge") return new HingeEntity(size);
    if (type == "fixjoint") return new FixJointEntity(size);
    if (HasKey(values, "length")) {
        float length = 0;
        ReadKey(values, "length", length);
        CheckLength(length);
    }
    return new SpringEntity(size);
}

void SceneReader::TieJoint(JointEntity& joint, const EntitySerializer& values) const {
    const physics::GeomPtr geom0 = GetGeom(values, "geom0"), geom1 = GetGeom(values, "geom1");
    math::Vec2 pos0, pos1;
    ReadKey(values, "geom0pos", pos0);
    ReadKey(values, "geom1pos", pos1);
    pos0 *= GetScale();
    pos1 *= GetScale();
    CheckLength(pos0);
    CheckLength(pos1);
    joint.SetEnds({geom0, pos0}, {geom1, pos1});
    joint.Rebuild();
}

physics::GeomPtr SceneReader::GetGeom(const EntitySerializer& values, const char* key) const {
    script::Int id = -1;
    ReadKey(values, key, id);
    const auto found = m_geoms.find(static_cast<unsigned int>(id));
    if (found == m_geoms.end()) {
        THROW(BadDataException, String(key) + " is no shape of the scene: " + std::to_string(id));
    }
    return found->second;
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

void SceneReader::ReadSettings(const EntitySerializer& values) {
    for (const auto& [name, value] : values) {
        if (name == "type") continue;
        const script::AbstractAttribPtr setting = SceneSettings::Find(name);
        if (setting && SceneSettings::IsValueFor(*setting, value)) {
            m_settings[name] = value;
        } else {
            Warn((setting ? "Bad value of a setting in scene file: " : "Unknown setting in scene file: ") +
                 name);
        }
    }
}

void SceneReader::LinkChain(const EntityPtr& entity, const EntitySerializer& values) {
    if (!HasKey(values, "chain") || !HasKey(values, "chainNr")) return;
    try {
        script::Int number = 0, place = 0;
        ReadKey(values, "chain", number);
        ReadKey(values, "chainNr", place);
        DATA_ASSERTION(place >= 0 && place < MAX_CHAIN_PLACE);
        m_chains[number][place] = entity;
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Bad chain");
    }
}

void SceneReader::EnterScene() {
    for (const auto& numbered : m_entities) {
        Guarded([&] { m_scene.AddEntity(numbered.second); });
    }
}

// What a file counts with gaps stands without any in the scene.
void SceneReader::FinishChains() {
    for (const auto& [number, links] : m_chains) {
        const ChainPtr chain = new Chain(Renumber(m_chainNumbers, m_takenChains, number));
        size_t place = 0;
        for (const auto& [_, entity] : links) chain->AddEntity(place++, entity);
    }
}

}  // namespace app
