#include "app/files/Serializer.h"

#include <map>
#include <vector>

#include "app/entities/Entity.h"
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

script::ExpressionPtr MakeFunction(const EntitySerializer& values) {
    const script::CodeBlockPtr body = new script::CodeBlock;
    for (const auto& [key, value] : values) AddAssignment(*body, key, value);
    return new script::FunctionDeclaration(script::StringList(), body);
}

void AddWater(script::CodeBlock& code) {
    const physics::ParticleList& particles = physics::Simulation::Instance().GetParticles();
    if (particles.empty()) return;
    math::Vec2List vecs;
    for (const physics::ParticlePtr& particle : particles) vecs.push_back(particle->m_pos);
    code.Add(MakeFunction({{"type", script::ValueToObject("water")}, {"vecs", script::ValueToObject(vecs)}}));
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

script::CodeBlockPtr Serializer::Serialize(const Scene& scene) {
    const script::CodeBlockPtr code = new script::CodeBlock;
    AddAssignment(*code, "version", script::ValueToObject(FORMAT_VERSION));
    std::vector<EntitySerializer> entities;
    for (const EntityPtr& entity : scene.GetEntities()) {
        // Something that is about to be retired may refer to what has gone already.
        if (!entity->IsInSimulation()) continue;
        entities.emplace_back();
        entity->Serialize(entities.back(), Entity::Purpose::FILE);
    }
    const FileNumbers numbers(entities);
    for (EntitySerializer& values : entities) {
        numbers.Apply(values);
        code->Add(MakeFunction(values));
    }
    AddWater(*code);
    return code;
}

script::CodeBlockPtr Serializer::Parse(const String& text) {
    return script::Parser::Instance().ParseGuest(text);
}

void Serializer::Deserialize(Scene& scene, const script::CodeBlockPtr& code) {
    if (!code) return;
    util::Guarded([&] { SceneReader(scene).Read(*code); }, "An error occured while deserializing: ");
}

void Serializer::Deserialize(Scene& scene, const String& text) {
    Deserialize(scene, Parse(text));
}

}  // namespace app
