#include "app/files/Serializer.h"

#include <map>
#include <vector>

#include "app/entities/Entity.h"
#include "app/entities/PointList.h"
#include "app/files/SceneReader.h"
#include "app/scene/Scene.h"
#include "logging/Log.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Conversions.h"
#include "script/Expressions.h"
#include "script/Objects.h"
#include "script/Parser.h"
#include "util/Assert.h"
#include "util/Guarded.h"

namespace app {

namespace {

constexpr script::Int FORMAT_VERSION = 1;

script::ExpressionPtr MakeAssignment(const String& key, const script::ObjectPtr& value) {
    const script::IdentifierPtr id = new script::Identifier(key);
    const script::ExpressionPtr ex = value->ToExpression();
    CODE_ASSERTION(id && ex);
    return new script::Assignment(id, ex);
}

// A value that has no code costs its key, not the file.
void AddAssignment(script::CodeBlock& block, const String& key, const script::ObjectPtr& value) {
    try {
        block.Add(MakeAssignment(key, value));
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Could not save " + key + ": " + e.what());
    }
}

void AddWater(std::vector<EntitySerializer>& moment) {
    const physics::ParticleList& particles = physics::Simulation::Instance().GetParticles();
    if (particles.empty()) return;
    PointList::Points points;
    points.reserve(particles.size());
    for (const physics::ParticlePtr& particle : particles)
        points.push_back({double(particle->m_pos.x), double(particle->m_pos.y)});
    const script::ObjectPtr vecs = new PointList(std::move(points));
    moment.push_back({{"type", script::ValueToObject("water")}, {"vecs", vecs}});
}

void AddSettings(std::vector<EntitySerializer>& moment, const SceneSettings::Values& settings) {
    if (settings.empty()) return;
    moment.emplace_back(settings.begin(), settings.end());
    moment.back()["type"] = script::ValueToObject("settings");
}

// The numbers by which a file's entities refer to each other: counted through from 1 in the order of the
// program's own, which never repeat. So what was loaded is saved with the numbers that it had.
class FileNumbers {
  public:
    explicit FileNumbers(const std::vector<EntitySerializer>& entities) {
        for (const EntitySerializer& values : entities) {
            Note(values, "id", m_geoms);
            Note(values, "body", m_bodies);
        }
        Count(m_geoms);
        Count(m_bodies);
    }

    void Apply(EntitySerializer& values) const {
        Replace(values, "body", m_bodies);
        for (const char* const key : {"id", "geom0", "geom1"}) Replace(values, key, m_geoms);
    }

  private:
    using Numbers = std::map<script::Int, script::Int>;
    static constexpr script::Int NOBODY = -1;  // of what is not in the file

    static void Note(const EntitySerializer& values, const char* key, Numbers& numbers) {
        const auto found = values.find(key);
        if (found != values.end()) numbers[script::ObjectToValue<script::Int>(found->second)] = 0;
    }
    // 0 is the world's in either count and stays.
    static void Count(Numbers& numbers) {
        numbers[0] = 0;
        script::Int count = 0;
        for (auto& [_, number] : numbers) number = count++;
    }
    static void Replace(EntitySerializer& values, const char* key, const Numbers& numbers) {
        const auto found = values.find(key);
        if (found == values.end()) return;
        const auto number = numbers.find(script::ObjectToValue<script::Int>(found->second));
        found->second = script::ValueToObject(number == numbers.end() ? NOBODY : number->second);
    }

    Numbers m_geoms, m_bodies;
};

}  // namespace

std::vector<EntitySerializer> Serializer::TakeMoment(const Scene& scene) {
    std::vector<EntitySerializer> moment;
    moment.reserve(scene.GetEntities().size() + 2);
    AddSettings(moment, scene.GetSettings().Get());
    for (const EntityPtr& entity : scene.GetEntities()) {
        // Something that is about to be retired may refer to what has gone already.
        if (!entity->IsInSimulation()) continue;
        moment.emplace_back();
        entity->Serialize(moment.back());
    }
    const FileNumbers numbers(moment);
    for (EntitySerializer& values : moment) numbers.Apply(values);
    AddWater(moment);
    return moment;
}

script::ExpressionPtr Serializer::MakeStatement(const EntitySerializer& values) {
    const script::CodeBlockPtr body = new script::CodeBlock;
    for (const auto& [key, value] : values) AddAssignment(*body, key, value);
    return new script::FunctionDeclaration(script::StringList(), body);
}

script::ExpressionPtr Serializer::MakeFirstStatement() {
    return MakeAssignment("version", script::ValueToObject(FORMAT_VERSION));
}

script::CodeBlockPtr Serializer::Serialize(const Scene& scene) {
    const script::CodeBlockPtr code = new script::CodeBlock;
    code->Add(MakeFirstStatement());
    for (const EntitySerializer& values : TakeMoment(scene)) code->Add(MakeStatement(values));
    return code;
}

script::CodeBlockPtr Serializer::Parse(const String& text, const std::function<void(double)>& onProgress) {
    if (!onProgress) return script::Parser::Instance().ParseGuest(text);
    const auto tell = [&](size_t done, size_t all) { onProgress(double(done) / double(all)); };
    return script::Parser::Instance().ParseGuest(text, tell);
}

void Serializer::Deserialize(Scene& scene, const script::CodeBlockPtr& code, bool import) {
    if (!code) return;
    const auto read = [&] {
        SceneReader reader(scene);
        reader.Read(*code);
        if (!import) scene.GetSettings().Set(reader.GetSettings());
    };
    util::Guarded(read, "An error occured while deserializing: ");
}

void Serializer::Deserialize(Scene& scene, const String& text, bool import) {
    Deserialize(scene, Parse(text), import);
}

}  // namespace app
