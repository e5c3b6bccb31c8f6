#pragma once

#include <functional>
#include <typeinfo>

#include "script/Fwd.h"
#include "util/Pointee.h"

// What a script expression can evaluate to: values, lists, functions, class objects and three markers for
// "no useful value". Objects are immutable but for their owner link, and shared by counted pointers.
namespace script {

class Object : public util::Pointee {
  public:
    ~Object() noexcept(false) override;

    // Source for this value; null when the value cannot be written (and so is left out of saved text).
    virtual ExpressionPtr ToExpression() const = 0;

    // The printed form, as the console shows it. Saved text is printed by the expression instead.
    String ToCode() const;
    virtual void WriteCode(CodeWriter& out) const = 0;

    // The class object that holds this one; for a class object also the place where look-up goes on.
    ClassObject* GetOwner() const { return m_owner.Get(); }
    virtual void SetOwner(const ClassObjectWeakPtr& owner);

    // Casts that are taken at every read of a name; null where the object is of another kind.
    virtual AbstractFunction* AsFunction() { return nullptr; }
    virtual ClassObject* AsClass() { return nullptr; }

  protected:
    Object();

  private:
    ClassObjectWeakPtr m_owner;
};

// T = bool, int, double, String.
template <class T>
class Value : public Object {
  public:
    explicit Value(const T& value) : m_value(value) {}
    const T& Get() const { return m_value; }

    ExpressionPtr ToExpression() const override;
    void WriteCode(CodeWriter& out) const override;

  private:
    const T m_value;
};

// Whatever can stand in front of an argument list.
class AbstractFunction : public Object {
  public:
    ~AbstractFunction() noexcept(false) override;

    virtual ObjectPtr Call(const ObjectList& args) = 0;
    virtual size_t GetArgCount() const = 0;

    const ClosurePtr& GetClosure() const { return m_closure; }
    AbstractFunction* AsFunction() final { return this; }

  protected:
    explicit AbstractFunction(const ClosurePtr& closure);

  private:
    ClosurePtr m_closure;  // where names of the body are looked up; null but for script functions
};

// Calling a list indexes it: `a(0)`.
class List : public AbstractFunction {
  public:
    explicit List(ObjectList list);  // raises "List too long" beyond MAX_LIST_SIZE
    ~List() noexcept(false) override;

    const ObjectList& Get() const { return m_list; }

    ObjectPtr Call(const ObjectList& args) override;
    size_t GetArgCount() const override { return 1; }
    ExpressionPtr ToExpression() const override;
    void WriteCode(CodeWriter& out) const override;

  private:
    ObjectList m_list;
};

// A function literal together with the closure in which it was evaluated.
class Function : public AbstractFunction {
  public:
    Function(const ClosurePtr& closure, const StringList& args, const ExpressionPtr& code);
    ~Function() noexcept(false) override;

    const ExpressionPtr& GetCode() const { return m_code; }
    // The locals of the latest call, kept until the next one; null before the first.
    const ClosurePtr& GetCallClosure() const { return m_callClosure; }

    ObjectPtr Call(const ObjectList& args) override;
    size_t GetArgCount() const override { return m_args.size(); }
    ExpressionPtr ToExpression() const override;
    void WriteCode(CodeWriter& out) const override;

  private:
    ClosurePtr MakeCallClosure(const ObjectList& args);
    void ReplaceCallClosure(const ClosurePtr& closure);

    const StringList m_args;
    ExpressionPtr m_code;
    ClosurePtr m_callClosure;
};

// Native functions. They have no source and vanish from saved text. A wrong number of arguments is a failed
// code assertion rather than a script error; either way it ends at the statement.
class AbstractIntrinsic : public AbstractFunction {
  public:
    AbstractIntrinsic();
    ExpressionPtr ToExpression() const override;
    void WriteCode(CodeWriter& out) const override;

    // For a function that computes or tells and changes nothing: guests may call it.
    void SetHarmless() { m_harmless = true; }

  protected:
    void CheckCaller() const;  // raises ScriptException for a guest

  private:
    bool m_harmless = false;
};

class IntrinsicCmd : public AbstractIntrinsic {
  public:
    using Native = std::function<ObjectPtr()>;
    explicit IntrinsicCmd(const Native& function) : m_function(function) {}
    ObjectPtr Call(const ObjectList& args) override;
    size_t GetArgCount() const override { return 0; }

  private:
    const Native m_function;
};

class IntrinsicCmd1 : public AbstractIntrinsic {
  public:
    using Native = std::function<ObjectPtr(const ObjectPtr&)>;
    explicit IntrinsicCmd1(const Native& function) : m_function(function) {}
    ObjectPtr Call(const ObjectList& args) override;
    size_t GetArgCount() const override { return 1; }

  private:
    const Native m_function;
};

class IntrinsicCmd2 : public AbstractIntrinsic {
  public:
    using Native = std::function<ObjectPtr(const ObjectPtr&, const ObjectPtr&)>;
    explicit IntrinsicCmd2(const Native& function) : m_function(function) {}
    ObjectPtr Call(const ObjectList& args) override;
    size_t GetArgCount() const override { return 2; }

  private:
    const Native m_function;
};

// Stands where there is no result. Prints at the console as nothing, vanishes from saved text.
class BadObject : public Object {
  public:
    ExpressionPtr ToExpression() const override;
};

class Void : public BadObject {  // the result of an empty block or of a native operation without one
  public:
    void WriteCode(CodeWriter& out) const override;
};

class Unbound : public BadObject {  // a parameter while its function is only being parsed
  public:
    void WriteCode(CodeWriter& out) const override;
};

class ErrorObject : public BadObject {  // the result of a failed statement
  public:
    void WriteCode(CodeWriter& out) const override;
};

extern template class Value<bool>;
extern template class Value<int>;
extern template class Value<double>;
extern template class Value<String>;

// The value if the object is one of exactly this type, else null (also for a null object). By typeid: several
// times quicker than a dynamic cast, and scenes convert millions of numbers.
template <class T>
const T* ValueOf(const ObjectPtr& object) {
    const Object* const pointee = object.Get();
    if (pointee == nullptr || typeid(*pointee) != typeid(Value<T>)) return nullptr;
    return &static_cast<const Value<T>*>(pointee)->Get();
}
// The same for the elements of a list.
inline const ObjectList* ListOf(const ObjectPtr& object) {
    const Object* const pointee = object.Get();
    if (pointee == nullptr || typeid(*pointee) != typeid(List)) return nullptr;
    return &static_cast<const List*>(pointee)->Get();
}

// Resolves what a variable holds, as reading its name does: a function without parameters is called and
// gives its result, anything else stands for itself.
ObjectPtr Resolve(const ObjectPtr& object);
// Whether Resolve would call it.
bool IsNullaryFunction(const ObjectPtr& object);

}  // namespace script
