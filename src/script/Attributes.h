#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <type_traits>

#include "math/Vector.h"
#include "script/ClassObject.h"
#include "script/Conversions.h"
#include "util/Callback.h"
#include "util/ClassTracker.h"

// Settings: a typed native value that is at the same time a script variable.
//
// Two representations are kept in step. The stored object is what scripts read and what is saved; the native
// value is what the program reads, by Get, without any script machinery.
//   - A script assignment stores its object and converts it to the native value at once. The object stays as
//     it was written: a float attribute set to 5 saves as 5.
//   - A native Set changes the value and replaces the stored object.
//   - A function without parameters as the stored object is a binding: the value follows it at each
//     RecalcAll (after every Execute, around a configuration, once per frame), and a native Set leaves it
//     standing. A binding that fails or gives a wrong type is dropped, and the last good value stays.
//   - Where the value lives elsewhere (AttribGetSet, AttribRemotePoker), the stored object of an unbound
//     attribute is brought in line whenever it is read or printed.
// T is bool, int, unsigned int, float, String, TVector2<float>, TVector2<int>, TVector3<float>,
// TVector4<float>; the code for these stands in Attributes.cpp.
namespace script {

class AbstractAttrib : public Variable, public util::ClassTracker<AbstractAttrib> {
  public:
    AbstractAttrib(const String& name, const ObjectPtr& value) : Variable(name, value) {}
    ~AbstractAttrib() noexcept(false) override;

    // The path of scripts and widgets: stores the object, which ends an earlier binding, and converts it.
    void SetValue(const ObjectPtr& value) override;

    // Converts the stored object to the native value. Never throws: what cannot be converted is logged and
    // replaced by the last good value.
    virtual void CalcValue() = 0;

    // Set as a value, brings the attribute back to where it began.
    virtual ObjectPtr MakeDefault() const = 0;

    // Whether the stored object is a function without parameters.
    bool IsBound() const { return m_binding != 0; }
    // Whether it is a guest's.
    bool IsGuestBound() const { return m_guest; }

    // CalcValue on each bound attribute. Those of guests have MAX_FRAME_STEPS together: where these are not
    // enough, the costliest formula ends as a plain value, and those behind it wait for the next time.
    static void RecalcAll();

    // While a file is being read, formulas may name what stands further down: they are first calculated, and
    // judged, by the next RecalcAll behind.
    class Reading {
      public:
        Reading() { ++s_readings; }
        ~Reading() { --s_readings; }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
    };

  protected:
    void Store(const ObjectPtr& value);  // without conversion
    virtual void Freeze() = 0;           // the value as it is takes the place of a formula

  private:
    void NoteBinding();
    int64_t CalcGuestValue();

    uint64_t m_binding = 0;  // number of the binding, counted up; the order of recalculation. 0 when unbound
    bool m_guest = false;    // the binding is a guest's

    static int s_readings;
};

template <class T>
class TAttrib : public AbstractAttrib {
  public:
    virtual T Get() const = 0;

    // Nothing when the value equals Get. Otherwise stores it and calls what was added by AddOnChange.
    virtual void Set(const T& value);

    ObjectPtr GetValue() override;
    void CalcValue() override;
    ObjectPtr MakeDefault() const override;

    // Runs after a change has been stored. Callbacks may add and remove others.
    void AddOnChange(const util::CallbackPtr& callback);

    const T& GetDefault() const { return m_default; }

  protected:
    TAttrib(const String& name, const T& defaultValue);

    virtual void StoreNative(const T& value) = 0;
    virtual bool LivesElsewhere() const { return false; }

  private:
    void Fire();
    void Freeze() override;
    void BringInLine();

    std::unique_ptr<util::CallbackSet> m_onChange;  // made by the first AddOnChange: few attributes have any
    const T m_default;
};

// The values that a numeric attribute takes. Those beyond are drawn to its ends, and what is no number
// changes nothing; what was written reads back as what was taken.
template <class T>
struct Range {
    T least;
    T most;
};

// The value lives in the attribute.
template <class T>
class Attrib final : public TAttrib<T> {
  public:
    Attrib(const String& name, const T& defaultValue)
        : TAttrib<T>(name, defaultValue), m_value(defaultValue) {}
    Attrib(const String& name, const T& defaultValue, const Range<T>& range)
        : TAttrib<T>(name, defaultValue), m_value(defaultValue), m_range(range) {}

    T Get() const override { return m_value; }
    const std::optional<Range<T>>& GetRange() const { return m_range; }

  protected:
    void StoreNative(const T& value) override {
        if constexpr (std::is_arithmetic_v<T>) {
            if (m_range) {
                if (value == value) m_value = std::clamp(value, m_range->least, m_range->most);
                return;
            }
        }
        m_value = value;
    }
    bool LivesElsewhere() const override { return m_range.has_value(); }

  private:
    T m_value;
    const std::optional<Range<T>> m_range;
};

// The value is read and written through functions. Once the owner is gone they are not called any more, and
// the attribute (held by a widget, say) reads as its default.
template <class T>
class AttribGetSet final : public TAttrib<T> {
  public:
    using Getter = std::function<T()>;
    using Setter = std::function<void(const T&)>;

    AttribGetSet(const String& name, const T& defaultValue, const Getter& getter, const Setter& setter)
        : TAttrib<T>(name, defaultValue), m_getter(getter), m_setter(setter) {}

    T Get() const override { return this->GetOwner() == nullptr ? this->GetDefault() : m_getter(); }

  protected:
    void StoreNative(const T& value) override {
        if (this->GetOwner() != nullptr) m_setter(value);
    }
    bool LivesElsewhere() const override { return true; }

  private:
    const Getter m_getter;
    const Setter m_setter;
};

// The value lives in a variable of the owner, and is out of reach once the owner is gone.
template <class T>
class AttribRemotePoker final : public TAttrib<T> {
  public:
    AttribRemotePoker(const String& name, const T& defaultValue, T* target)
        : TAttrib<T>(name, defaultValue), m_target(target) {}

    T Get() const override { return this->GetOwner() == nullptr ? this->GetDefault() : *m_target; }

  protected:
    void StoreNative(const T& value) override {
        if (this->GetOwner() != nullptr) *m_target = value;
    }
    bool LivesElsewhere() const override { return true; }

  private:
    T* const m_target;
};

// Declare an attribute in the constructor of its owner, which holds it from then on as the variable `name`.
template <class T>
AttribPtr<T> DeclareAttrib(ClassObject& owner, const String& name, const T& defaultValue) {
    const AttribPtr<T> attrib = new Attrib<T>(name, defaultValue);
    owner.AddVariable(attrib);
    return attrib;
}
template <class T>
AttribPtr<T> DeclareAttrib(ClassObject& owner, const String& name, const T& defaultValue,
                           const Range<T>& range) {
    const AttribPtr<T> attrib = new Attrib<T>(name, defaultValue, range);
    owner.AddVariable(attrib);
    return attrib;
}
inline AttribPtr<String> DeclareAttrib(ClassObject& owner, const String& name, const char* defaultValue) {
    return DeclareAttrib<String>(owner, name, defaultValue);
}

// The default is only remembered: the value is what the getter gives.
template <class T>
AttribGetSetPtr<T> DeclareAttribGetSet(ClassObject& owner, const String& name, const T& defaultValue,
                                       const typename AttribGetSet<T>::Getter& getter,
                                       const typename AttribGetSet<T>::Setter& setter) {
    const AttribGetSetPtr<T> attrib = new AttribGetSet<T>(name, defaultValue, getter, setter);
    owner.AddVariable(attrib);
    return attrib;
}

// `target` lives as long as the owner; its present value is the default.
template <class T>
AttribRemotePokerPtr<T> DeclareAttribRemotePoker(ClassObject& owner, const String& name, T* target) {
    const AttribRemotePokerPtr<T> attrib = new AttribRemotePoker<T>(name, *target, target);
    owner.AddVariable(attrib);
    return attrib;
}

extern template class TAttrib<bool>;
extern template class TAttrib<int>;
extern template class TAttrib<unsigned int>;
extern template class TAttrib<float>;
extern template class TAttrib<String>;
extern template class TAttrib<math::TVector2<float>>;
extern template class TAttrib<math::TVector2<int>>;
extern template class TAttrib<math::TVector3<float>>;
extern template class TAttrib<math::TVector4<float>>;

extern template class Attrib<bool>;
extern template class Attrib<int>;
extern template class Attrib<unsigned int>;
extern template class Attrib<float>;
extern template class Attrib<String>;
extern template class Attrib<math::TVector2<float>>;
extern template class Attrib<math::TVector3<float>>;
extern template class Attrib<math::TVector4<float>>;

extern template class AttribGetSet<bool>;
extern template class AttribGetSet<float>;

extern template class AttribRemotePoker<bool>;
extern template class AttribRemotePoker<int>;
extern template class AttribRemotePoker<math::TVector2<int>>;

}  // namespace script
