#include "script/Attributes.h"

#include <map>

#include "logging/Log.h"
#include "script/Exceptions.h"
#include "util/LockPtr.h"

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

}  // namespace

AbstractAttrib::~AbstractAttrib() noexcept(false) {
    if (m_binding != 0) GetBindings().erase(m_binding);
}

void AbstractAttrib::SetValue(const ObjectPtr& value) {
    Store(value);
    CalcValue();
}

void AbstractAttrib::Store(const ObjectPtr& value) {
    Variable::SetValue(value);
    NoteBinding();
}

void AbstractAttrib::NoteBinding() {
    const bool bound = IsNullaryFunction(GetStored());
    if (bound == IsBound()) return;
    if (bound) {
        m_binding = ++s_lastBinding;
        GetBindings().emplace(m_binding, this);
    } else {
        GetBindings().erase(m_binding);
        m_binding = 0;
    }
}

// Over a copy: a binding may run anything, also what ends attributes.
void AbstractAttrib::RecalcAll() {
    const Bindings bindings = GetBindings();
    for (const auto& binding : bindings) {
        if (GetBindings().count(binding.first) == 0) continue;
        const util::LockPtr<AbstractAttrib> attrib(binding.second);
        attrib->CalcValue();
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
        const ObjectPtr resolved = Resolve(GetStored());
        m_calculated = resolved;
        const T value = ObjectToValue<T>(resolved);
        if (value == Get()) return;
        StoreNative(value);
        Fire();
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, GetName() + " was bound to bad type");
        Repair();
    }
}

// Without CalcValue: if what stands in cannot be converted either, it would come back here for ever.
template <class T>
void TAttrib<T>::Repair() {
    Store(ValueToObject(Get()));
}

template <class T>
void TAttrib<T>::Fire() {
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
