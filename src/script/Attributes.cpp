#include "script/Attributes.h"

#include <map>

#include "logging/Log.h"
#include "script/Exceptions.h"
#include "script/Guest.h"
#include "script/Scopes.h"
#include "util/LockPtr.h"
#include "util/Redraw.h"

namespace script {

// ---- AbstractAttrib ----------------------------------------------------------------------------------

namespace {

// The bound attributes, in the order in which they were bound: recalculation must not depend on addresses.
using Bindings = std::map<uint64_t, AbstractAttrib*>;

Bindings& GetBindings() {
    static Bindings& s_bindings = *new Bindings;  // abandoned at exit
    return s_bindings;
}

uint64_t s_lastBinding = 0;

bool IsGuestFunction(Object& object) {
    const ClosurePtr& closure = object.AsFunction()->GetClosure();
    return closure && closure->GetGuest() != nullptr;
}

}  // namespace

AbstractAttrib::~AbstractAttrib() noexcept(false) {
    if (m_binding != 0) GetBindings().erase(m_binding);
}

int AbstractAttrib::s_readings = 0;

void AbstractAttrib::SetValue(const ObjectPtr& value) {
    Store(value);
    if (m_guest) {
        CalcGuestValue();
    } else if (!IsBound() || s_readings == 0) {
        CalcValue();
    }
}

void AbstractAttrib::Store(const ObjectPtr& value) {
    Variable::SetValue(value);
    NoteBinding();
}

void AbstractAttrib::NoteBinding() {
    const bool bound = IsNullaryFunction(GetStored());
    m_guest = bound && IsGuestFunction(*GetStored());
    if (bound == IsBound()) return;
    if (bound) {
        m_binding = ++s_lastBinding;
        GetBindings().emplace(m_binding, this);
    } else {
        GetBindings().erase(m_binding);
        m_binding = 0;
    }
}

// A formula of which a statement fails, or that takes too long, would do so again in each frame. Gives the
// steps that it took.
int64_t AbstractAttrib::CalcGuestValue() {
    const Guest& guest = *GetStored()->AsFunction()->GetClosure()->GetGuest();
    const int failures = guest.GetNumFailures();
    const StepLimit limit(MAX_FORMULA_STEPS);
    CalcValue();
    if (m_guest && guest.GetNumFailures() != failures) Freeze();
    return limit.GetUsed();
}

// Over a copy: a binding may run anything, also what ends attributes.
void AbstractAttrib::RecalcAll() {
    const Bindings bindings = GetBindings();
    int64_t guestSteps = MAX_FRAME_STEPS, mostSteps = 0;
    util::WeakPtr<AbstractAttrib> costliest;
    for (const auto& binding : bindings) {
        if (GetBindings().count(binding.first) == 0) continue;
        const util::LockPtr<AbstractAttrib> attrib(binding.second);
        if (!attrib->IsGuestBound()) {
            attrib->CalcValue();
        } else if (guestSteps >= MAX_FORMULA_STEPS) {
            const int64_t steps = attrib->CalcGuestValue();
            guestSteps -= steps;
            if (steps <= mostSteps) continue;
            mostSteps = steps;
            costliest = binding.second;
        } else if (const util::LockPtr<AbstractAttrib> spendthrift = costliest.Lock()) {
            Log(logging::Warning,
                spendthrift->GetName() + " keeps its value: the scene's formulas take too long");
            spendthrift->Freeze();
            costliest = nullptr;
        }
    }
}

// ---- TAttrib -----------------------------------------------------------------------------------------

template <class T>
TAttrib<T>::TAttrib(const String& name, const T& defaultValue)
    : AbstractAttrib(name, ValueToObject(defaultValue)), m_default(defaultValue) {}

template <class T>
void TAttrib<T>::Set(const T& value) {
    if (value == Get()) return;
    StoreNative(value);
    if (!IsBound()) Store(ValueToObject(value));
    Fire();
}

template <class T>
void TAttrib<T>::CalcValue() {
    try {
        const T value = ObjectToValue<T>(Resolve(GetStored()));
        if (value == Get()) return;
        StoreNative(value);
        Fire();
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        const bool tooLong = dynamic_cast<const TimeoutException*>(&e) != nullptr;
        Log(logging::Warning, GetName() + (tooLong ? " keeps its value: its formula takes too long"
                                                   : " was bound to bad type"));
        Freeze();
    }
}

template <class T>
ObjectPtr TAttrib<T>::MakeDefault() const {
    return ValueToObject(m_default);
}

// Without CalcValue: if what stands in cannot be converted either, it would come back here for ever.
template <class T>
void TAttrib<T>::Freeze() {
    Store(ValueToObject(Get()));
}

template <class T>
void TAttrib<T>::Fire() {
    util::Redraw::Request();
    if (m_onChange) m_onChange->CallAll();
}

template <class T>
void TAttrib<T>::AddOnChange(const util::CallbackPtr& callback) {
    if (!m_onChange) m_onChange = std::make_unique<util::CallbackSet>();
    m_onChange->Add(callback);
}

template <class T>
ObjectPtr TAttrib<T>::GetValue() {
    if (LivesElsewhere() && !IsBound()) BringInLine();
    return GetStored();
}

// The object stays where it stands for the value already: `5` for 5.0.
template <class T>
void TAttrib<T>::BringInLine() {
    const T value = Get();
    if (!(ObjectToValue<T>(GetStored()) == value)) Store(ValueToObject(value));
}

template class TAttrib<bool>;
template class TAttrib<int>;
template class TAttrib<unsigned int>;
template class TAttrib<float>;
template class TAttrib<String>;
template class TAttrib<math::TVector2<float>>;
template class TAttrib<math::TVector2<int>>;
template class TAttrib<math::TVector3<float>>;
template class TAttrib<math::TVector4<float>>;

template class Attrib<bool>;
template class Attrib<int>;
template class Attrib<unsigned int>;
template class Attrib<float>;
template class Attrib<String>;
template class Attrib<math::TVector2<float>>;
template class Attrib<math::TVector3<float>>;
template class Attrib<math::TVector4<float>>;

template class AttribGetSet<bool>;
template class AttribGetSet<float>;

template class AttribRemotePoker<bool>;
template class AttribRemotePoker<int>;
template class AttribRemotePoker<math::TVector2<int>>;

}  // namespace script
