#include "script/Guest.h"
#include "Fuzz.h"
#include "script/Attributes.h"
#include "util/Guarded.h"

namespace {

// A part of the program that a guest must leave alone.
class Part : public script::Reflected {
  public:
    Part() : Reflected("Sim"), m_speed(script::DeclareAttrib(*this, "x", 1.0f)) {
        script::DeclareAttrib(*this, "on", true);
        script::DeclareAttrib(*this, "name", "part");
        AddCmd("go", [this] { ++m_effects; });
        AddCmd1("set", [this](const script::ObjectPtr&) { ++m_effects; });
        AddCmd2("bind", [this](const String&, const script::ObjectPtr&) { ++m_effects; });
    }
    int m_effects = 0;
    const script::AttribPtr<float> m_speed;
};

constexpr int64_t MAX_STEPS_EACH = 20000;

}  // namespace

// A stranger's text, statement by statement and then behind a bound attribute, ends in time and changes
// nothing.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static script::Parser& s_parser = fuzz::MakeQuietParser();
    static const util::SharedPtr<Part>& s_part = *new util::SharedPtr<Part>(new Part);
    static const bool s_ready = [] {
        script::Reflected::AddToRoot(s_part);
        s_parser.Execute("f = { Sim.x = 2; Sim.go }; g = (o)=>{ o.x = 3; o }; y = [1, f]");
        s_part->m_speed->Set(1);
        s_part->m_effects = 0;
        return true;
    }();
    static const String& s_before = *new String(s_parser.GetRootCode());
    fuzz::Require(s_ready, "ready");

    const script::CodeBlockPtr code = s_parser.ParseGuest(String(data, data + size));
    if (!code) return 0;
    const script::GuestPtr guest = new script::Guest;
    const script::ClosurePtr closure = s_parser.MakeGuestClosure(*guest, "guest");
    const script::ReflectedPtr entity = new script::Reflected("entity");
    const script::AttribPtr<float> attrib = script::DeclareAttrib(*entity, "size", 1.0f);
    for (const script::ExpressionPtr& statement : code->GetExpressions()) {
        util::Guarded([&] {
            const script::GuestTurn turn(*guest);
            const script::StepLimit limit(MAX_STEPS_EACH);
            const script::CodeBlockPtr block = new script::CodeBlock(script::ExpressionList{statement});
            const script::ObjectPtr value = block->Evaluate(closure);
            const script::ObjectPtr formula = new script::Function(closure, {}, block);
            attrib->SetValue(formula);
        });
    }
    fuzz::Tidy();
    closure->RemoveAllVariables();
    fuzz::Require(s_part->m_effects == 0, "no command runs");
    fuzz::Require(s_parser.GetRootCode() == s_before, "nothing changes", s_parser.GetRootCode());
    return 0;
}
