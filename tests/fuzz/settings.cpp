#include "Fuzz.h"
#include "script/Attributes.h"
#include "script/Limits.h"

namespace {

class Part : public script::Reflected {
  public:
    explicit Part(const String& name) : Reflected(name) {
        script::DeclareAttrib(*this, "x", 1.0f);
        script::DeclareAttrib(*this, "on", true);
        script::DeclareAttrib(*this, "name", "part");
        script::DeclareAttrib(*this, "size", math::Vec2(1, 2));
    }
};

constexpr int64_t MAX_STEPS_EACH = 20000;
constexpr size_t MAX_TEXT = 100000;

// The root with nothing but what the program puts there.
void Empty(script::Parser& parser, const script::ObjectPtr& math) {
    script::ClassObject& root = *parser.GetRootClosure();
    root.RemoveAllVariables();
    root.AddValue("math", math);
    script::Reflected::AddToRoot(script::ReflectedPtr(new Part("App")));
    script::Reflected::AddToRoot(script::ReflectedPtr(new Part("Sim")));
}

String Run(script::Parser& parser, const String& text) {
    {
        const script::StepLimit limit(MAX_STEPS_EACH);
        const script::AbstractAttrib::Reading reading;
        parser.Execute(text);
    }
    fuzz::Tidy();
    return parser.GetRootCode();
}

}  // namespace

// Whatever a user has typed: the settings that are saved read back to the same settings.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static script::Parser& s_parser = fuzz::MakeQuietParser();
    static const script::ObjectPtr& s_math =
        *new script::ObjectPtr(s_parser.GetRootClosure()->GetLocalValue("math"));
    const String text(data, data + size);
    // Operators declared at the top stay with the parser, and a covered `math` ends all arithmetic: both are
    // told.
    if (text.find("infix") != String::npos || text.find("math") != String::npos) return 0;
    if (text.find('\0') != String::npos || text.find('\r') != String::npos) return 0;
    Empty(s_parser, s_math);
    const String saved = Run(s_parser, text);
    if (saved.size() > MAX_TEXT) return 0;
    Empty(s_parser, s_math);
    const String again = Run(s_parser, saved);
    fuzz::Require(again == saved, "saved settings read back", saved + "\n----\n" + again);
    return 0;
}
