#include "app/scene/SceneSettings.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <vector>

#include "math/Vector.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/Attributes.h"
#include "script/Expressions.h"
#include "script/Scopes.h"

namespace app {

namespace {

using script::AbstractAttribPtr;

// None of them makes a step dearer. Their names tell them apart without their owners'.
std::vector<AbstractAttribPtr> ListSettings() {
    const physics::Simulation& sim = physics::Simulation::Instance();
    const physics::SPH& water = physics::SPH::Instance();
    return {sim.m_gravity,          sim.m_airFrictionLinear, sim.m_airFrictionQuadratic,
            sim.m_airDensity,       sim.m_rotFrictionLinear, water.m_density,
            water.m_surfaceTension, water.m_vaporizeTime,    water.m_viscosity};
}

const std::vector<AbstractAttribPtr>& GetSettings() {
    static const std::vector<AbstractAttribPtr>& s_settings =
        *new std::vector<AbstractAttribPtr>(ListSettings());
    return s_settings;
}

String CodeOf(const script::ObjectPtr& value) {
    return value->ToExpression()->ToCode();
}

}  // namespace

SceneSettings::SceneSettings() : m_bundle(std::make_shared<Values>()) {}
SceneSettings::~SceneSettings() = default;

AbstractAttribPtr SceneSettings::Find(const String& name) {
    const std::vector<AbstractAttribPtr>& settings = GetSettings();
    const auto found = std::find_if(settings.begin(), settings.end(), [&](const AbstractAttribPtr& setting) {
        return setting->GetName() == name;
    });
    return found == settings.end() ? AbstractAttribPtr() : *found;
}

bool SceneSettings::IsValueFor(script::AbstractAttrib& setting, const script::ObjectPtr& value) {
    if (script::IsNullaryFunction(value)) return false;
    try {
        if (dynamic_cast<script::TAttrib<float>*>(&setting) != nullptr)
            return std::isfinite(script::ObjectToValue<float>(value));
        return math::IsFinite(script::ObjectToValue<math::Vec2>(value));
    } catch (const std::exception&) {
        return false;
    }
}

void SceneSettings::Set(const Values& values) {
    Switch(std::make_shared<Values>(values));
}

SceneSettings::Values SceneSettings::Get() const {
    Values values;
    for (const auto& [name, _] : *m_bundle) {
        const script::ObjectPtr value = Find(name)->GetValue();
        const script::ObjectPtr& users = m_users.at(name);
        if (script::IsNullaryFunction(users) || CodeOf(value) != CodeOf(users)) values[name] = value;
    }
    return values;
}

String SceneSettings::ToCode() const {
    String code;
    for (const auto& [name, value] : Get()) code += name + " = " + CodeOf(value) + ";";
    return code;
}

void SceneSettings::Switch(const Bundle& bundle) {
    if (bundle == m_bundle) return;
    for (auto& [name, value] : *m_bundle) value = Find(name)->GetValue();
    for (const auto& [name, value] : m_users) Find(name)->SetValue(value);
    m_users.clear();
    m_bundle = bundle;
    for (const auto& [name, value] : *m_bundle) {
        const AbstractAttribPtr setting = Find(name);
        m_users[name] = setting->GetValue();
        setting->SetValue(value);
    }
}

void SceneSettings::Adopt() {
    Values present;
    for (const AbstractAttribPtr& setting : GetSettings()) {
        const script::ObjectPtr value = setting->GetValue();
        if (!script::IsNullaryFunction(value)) present[setting->GetName()] = value;
    }
    Set({});
    for (const auto& [name, _] : present) Find(name)->SetValue(Find(name)->MakeDefault());
    Set(present);
}

SceneSettings::Values SceneSettings::GetUsersOwn() const {
    Values own;
    for (const AbstractAttribPtr& setting : GetSettings()) {
        const auto found = m_users.find(setting->GetName());
        own[setting->GetName()] = found == m_users.end() ? setting->GetValue() : found->second;
    }
    return own;
}

void SceneSettings::SetUsersOwn(const Values& values) {
    for (const auto& [name, value] : values) {
        const auto found = m_users.find(name);
        if (found == m_users.end()) {
            Find(name)->SetValue(value);
        } else {
            found->second = value;
        }
    }
}

SceneSettings::UsersTurn::UsersTurn(SceneSettings& settings)
    : m_settings(settings), m_bundle(settings.GetBundle()) {
    m_settings.Set({});
}

SceneSettings::UsersTurn::~UsersTurn() {
    m_settings.Switch(m_bundle);
}

}  // namespace app
