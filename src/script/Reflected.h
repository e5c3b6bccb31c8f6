#pragma once

#include "script/ClassObject.h"
#include "script/Conversions.h"
#include "util/ClassTracker.h"

namespace script {

// A part of the program that scripts see. How a native object becomes one:
//   1. its class derives from Reflected and passes the name to the constructor;
//   2. its constructor declares attributes (Attributes.h) and commands (AddCmd), which become variables;
//   3. it is attached, by AddToRoot or by AddReflected on a parent; from then on `Name.attribute` works;
//   4. the parent's variable holds it: it lives until RemoveVariable, or moves by another AddReflected.
// Commands watch their object weakly: one that outlives it (in a script's list) fails at the call.
class Reflected : public ClassObject, public util::ClassTracker<Reflected> {
  public:
    explicit Reflected(const String& name);
    ~Reflected() noexcept(false) override;

    virtual String GetReflectedName() const { return m_reflectedName; }
    void SetReflectedName(const String& name);  // asserts that the object is not attached

    void WriteCode(CodeWriter& out) const override;  // the name

    // Takes `child` away from where it was and attaches it here, under its name or, where that is taken,
    // under name_2, name_3, ...
    void AddReflected(const ReflectedPtr& child);
    static void AddToRoot(const ReflectedPtr& child);

    // Commands. `callable` is whatever can be called: a function, a lambda, a std::function; with an
    // object in front, one of its methods. Arguments and results are converted by Conversions.h; reading
    // the name of a command without arguments performs it.
    template <class Callable>
    void AddCmd(const String& name, Callable callable) {
        AddConstant(name, MakeCmd(std::move(callable)));
    }
    template <class C, class Method>
    void AddCmd(const String& name, C* object, Method method) {
        AddConstant(name, MakeCmd(BindMethod(object, method)));
    }
    template <class Callable>
    void AddCmd1(const String& name, Callable callable) {
        AddConstant(name, MakeCmd1(std::move(callable)));
    }
    template <class C, class Method>
    void AddCmd1(const String& name, C* object, Method method) {
        AddConstant(name, MakeCmd1(BindMethod(object, method)));
    }
    template <class Callable>
    void AddCmd2(const String& name, Callable callable) {
        AddConstant(name, MakeCmd2(std::move(callable)));
    }
    template <class C, class Method>
    void AddCmd2(const String& name, C* object, Method method) {
        AddConstant(name, MakeCmd2(BindMethod(object, method)));
    }

    // Lets scenes and language files call these commands too. Only for what changes nothing.
    void AllowGuests(std::initializer_list<const char*> commands) const;

    // Adds `value` under `name` as a variable that scripts cannot assign.
    void AddConstant(const String& name, const ObjectPtr& value);

  private:
    String m_reflectedName;
};

}  // namespace script
