#include "script/Reflected.h"

#include "script/CodeWriter.h"
#include "util/Assert.h"

namespace script {

Reflected::Reflected(const String& name) : m_reflectedName(name) {}

Reflected::~Reflected() noexcept(false) = default;

void Reflected::SetReflectedName(const String& name) {
    CODE_ASSERTION(!GetOwner());
    m_reflectedName = name;
}

void Reflected::WriteCode(CodeWriter& out) const {
    out.Append(GetReflectedName());
}

void Reflected::AddReflected(const ReflectedPtr& child) {
    const ReflectedPtr hold = child;  // the variable that goes may be the last hold, or `child` itself
    hold->CheckOwner(this);
    while (ClassObject* const owner = hold->GetOwner()) {
        const VariablePtr variable = owner->FindVariableByValue(hold.Get());
        if (variable) {
            owner->RemoveVariable(variable->GetName());
        } else {
            hold->SetOwner(nullptr);
        }
    }
    const String wanted = hold->GetReflectedName();
    String name = wanted;
    for (int i = 2; HasVariable(name); ++i) name = wanted + "_" + std::to_string(i);
    hold->SetReflectedName(name);
    AddConstant(name, hold);
}

void Reflected::AllowGuests(std::initializer_list<const char*> commands) const {
    for (const char* const name : commands) {
        const auto intrinsic = util::DynamicCast<AbstractIntrinsic>(GetLocalValue(name));
        CODE_ASSERTION(intrinsic);
        intrinsic->SetHarmless();
    }
}

void Reflected::AddConstant(const String& name, const ObjectPtr& value) {
    AddVariable(new Variable(name, value, true));
}

}  // namespace script
