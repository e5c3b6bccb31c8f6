#include "app/entities/Entity.h"

#include "app/entities/Chain.h"
#include "app/entities/EntityReader.h"

namespace app {

uint32_t Entity::s_nextSerial = 0;

Entity::Entity(const String& name) : Reflected(name), m_serial(s_nextSerial++) {}

Entity::~Entity() noexcept(false) = default;

void Entity::Serialize(EntitySerializer& out) const {
    SerializeAttributes(out);
    out["color"] = script::ValueToObject(m_color);
    if (m_chain) {
        out["chain"] = script::ValueToObject(m_chain->GetID());
        out["chainNr"] = script::ValueToObject(static_cast<int>(m_chain->GetPlaceOf(*this)));
    }
    if (m_hasGroup) out["group"] = script::ValueToObject(m_group);
    if (m_tracked) out["tracked"] = script::ValueToObject(true);
}

// Value objects go in as they are, so that a function bound to an attribute stays a function.
void Entity::SerializeAttributes(EntitySerializer& out) const {
    for (const script::VariablePtr& variable : GetVariables()) {
        out[variable->GetName()] = variable->GetValue();
    }
}

void Entity::Deserialize(const EntitySerializer& in) {
    DeserializeAttributes(in);
    if (ReadKey(in, "color", m_color)) m_hasColor = true;
    // These two are written only when they hold, so their absence is no fault.
    if (HasKey(in, "group")) {
        script::Int group = NO_GROUP;
        ReadKey(in, "group", group);
        SetGroup(group);
    }
    if (HasKey(in, "tracked")) ReadKey(in, "tracked", m_tracked);
}

void Entity::DeserializeAttributes(const EntitySerializer& in) {
    for (const auto& [key, value] : in) {
        const script::VariablePtr variable = FindLocal(key);
        if (variable) variable->SetValue(value);
    }
}

// Objects are never changed, only replaced, so equal ones are the same.
bool Entity::Values::operator==(const Values& other) const {
    return attributes == other.attributes && color == other.color && hasColor == other.hasColor &&
           group == other.group && tracked == other.tracked && chain == other.chain;
}

Entity::ValuesPtr Entity::GetValues() const {
    Values values{{}, m_color, m_hasColor, GetGroup(), m_tracked, m_chain};
    for (const script::VariablePtr& variable : GetVariables())
        values.attributes.push_back(variable->GetValue());
    if (!m_values || !(*m_values == values)) m_values = std::make_shared<const Values>(std::move(values));
    return m_values;
}

void Entity::Restore(const Values& values) {
    ResetForRestore();
    size_t place = 0;
    for (const script::VariablePtr& variable : GetVariables()) {
        const script::ObjectPtr& value = values.attributes[place++];
        if (variable->GetValue() != value) variable->SetValue(value);
    }
    m_color = values.color;
    m_hasColor = values.hasColor;
    SetGroup(values.group);
    m_tracked = values.tracked;
    m_chain = values.chain;
}

void Entity::SetColor(math::Vec3 color) {
    m_color = color;
    m_hasColor = true;
}

void Entity::SetGroup(script::Int group) {
    m_hasGroup = group != NO_GROUP;
    m_group = group;
}

void Entity::EnterScene(Scene* scene) {
    m_scene = scene;
    m_inScene = true;
}

void Entity::SetChain(const ChainPtr& chain) {
    m_chain = chain;
}

void Entity::CopyValuesFrom(const Entity& original) {
    EntitySerializer attributes;
    original.SerializeAttributes(attributes);
    DeserializeAttributes(attributes);
    m_color = original.m_color;
    m_hasColor = original.m_hasColor;
    SetGroup(original.GetGroup());
}

}  // namespace app
