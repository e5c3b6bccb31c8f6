#include "ScriptFixture.h"

#include <algorithm>

namespace test {

Gadget::Gadget(const String& name)
    : Reflected(name),
      m_on(script::DeclareAttrib(*this, "on", true)),
      m_count(script::DeclareAttrib(*this, "count", 3)),
      m_limit(script::DeclareAttrib(*this, "limit", 7u)),
      m_speed(script::DeclareAttrib(*this, "speed", 1.5f)),
      m_title(script::DeclareAttrib(*this, "title", "gadget")),
      m_gravity(script::DeclareAttrib(*this, "gravity", math::Vec2(0, -9.8f))),
      m_tint(script::DeclareAttrib(*this, "tint", math::Vec3(0.25f, 0.5f, 1))),
      m_color(script::DeclareAttrib(*this, "color", math::Vec4(0, 0, 0, 1))),
      m_level(script::DeclareAttribGetSet(
          *this, "level", 0.5f, [this] { return m_levelValue; },
          [this](float value) { m_levelValue = std::clamp(value, 0.0f, 1.0f); })),
      m_size(script::DeclareAttribRemotePoker(*this, "size", &m_sizeValue)) {
    AddCmd("Reset", this, &Gadget::Reset);
    AddCmd1("Twice", this, &Gadget::Twice);
    AddCmd2("Repeat", this, &Gadget::Repeat);
}

String Gadget::Repeat(const String& text, int count) const {
    String repeated;
    for (int i = 0; i < count; ++i) repeated += text;
    return repeated;
}

// The intrinsics, which a test may have covered up.
static const script::ObjectPtr& GetMath() {
    static const script::ObjectPtr& s_math =
        *new script::ObjectPtr(script::Parser::Instance().GetRootClosure()->GetLocalValue("math"));
    return s_math;
}

Script::Script()
    : m_parser(script::Parser::Instance()),
      m_gadget(new Gadget),
      m_log(logging::Warning | logging::CodeError | logging::DataError | logging::Error) {
    m_parser.SetOnError([this](const String& text) { m_errors.push_back(text); });
    GetMath();
    script::Reflected::AddToRoot(m_gadget);
}

Script::~Script() {
    m_log.Clear();
    m_parser.SetOnError(script::Parser::OnError());
    m_parser.GetRootClosure()->RemoveAllVariables();
    m_parser.GetRootClosure()->AddValue("math", GetMath());
}

script::ObjectPtr Script::Get(const String& name) const {
    return m_parser.GetRootClosure()->GetLocalValue(name);
}

}  // namespace test
