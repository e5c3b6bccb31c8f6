#include "app/files/Serializer.h"

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

}  // namespace

script::CodeBlockPtr Serializer::Serialize(const Scene& scene) {
    const script::CodeBlockPtr code = new script::CodeBlock;
    AddAssignment(*code, "version", script::ValueToObject(FORMAT_VERSION));
    for (const EntityPtr& entity : scene.GetEntities()) {
        // Something that is about to be retired may refer to what has gone already.
        if (!entity->IsInSimulation()) continue;
        EntitySerializer values;
        entity->Serialize(values, Entity::Purpose::FILE);
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
