#pragma once

#include <functional>
#include <tuple>
#include <type_traits>

#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "script/Objects.h"

// The one bridge between script objects and native values. Each type has one accepting rule and one text
// for everything else, null included; all failures are ScriptException.
namespace script {

// T: bool, int, unsigned int, float, double, long double, String, ObjectList, ObjectPtr, the vectors of
// floats, TVector2<int>, math::Vec2List, std::vector<math::Vec2>, math::BoundingBox2f. An int is a valid
// float, a float is never an int.
template <class T>
T ObjectToValue(const ObjectPtr& object);

template <>
bool ObjectToValue(const ObjectPtr& object);
template <>
int ObjectToValue(const ObjectPtr& object);
template <>
unsigned int ObjectToValue(const ObjectPtr& object);
template <>
float ObjectToValue(const ObjectPtr& object);
template <>
double ObjectToValue(const ObjectPtr& object);
template <>
long double ObjectToValue(const ObjectPtr& object);
template <>
String ObjectToValue(const ObjectPtr& object);
template <>
ObjectPtr ObjectToValue(const ObjectPtr& object);
template <>
ObjectList ObjectToValue(const ObjectPtr& object);
template <>
math::TVector2<float> ObjectToValue(const ObjectPtr& object);
template <>
math::TVector2<int> ObjectToValue(const ObjectPtr& object);
template <>
math::TVector3<float> ObjectToValue(const ObjectPtr& object);
template <>
math::TVector4<float> ObjectToValue(const ObjectPtr& object);
template <>
math::Vec2List ObjectToValue(const ObjectPtr& object);
template <>
std::vector<math::Vec2> ObjectToValue(const ObjectPtr& object);
template <>
math::BoundingBox2f ObjectToValue(const ObjectPtr& object);

namespace conversions {

ObjectPtr ToObject(bool value);
ObjectPtr ToObject(int value);
ObjectPtr ToObject(unsigned int value);
ObjectPtr ToObject(double value);
ObjectPtr ToObject(const String& value);
ObjectPtr ToObject(const ObjectPtr& value);
ObjectPtr ToObject(const ObjectList& value);
ObjectPtr ToObject(const math::TVector2<float>& value);
ObjectPtr ToObject(const math::TVector2<int>& value);
ObjectPtr ToObject(const math::TVector3<float>& value);
ObjectPtr ToObject(const math::TVector4<float>& value);
ObjectPtr ToObject(const math::Vec2List& value);
ObjectPtr ToObject(const std::vector<math::Vec2>& value);
ObjectPtr ToObject(const math::BoundingBox2f& value);
inline ObjectPtr ToObject(float value) {
    return ToObject(static_cast<double>(value));
}
inline ObjectPtr ToObject(long double value) {
    return ToObject(static_cast<double>(value));
}
template <class T>
ObjectPtr ToObject(T*) = delete;  // a pointer would turn into a bool

}  // namespace conversions

template <class T>
ObjectPtr ValueToObject(const T& value) {
    return conversions::ToObject(value);
}
inline ObjectPtr ValueToObject(const char* text) {
    return conversions::ToObject(String(text));
}
inline ObjectPtr MakeVoid() {
    return new Void;
}

// ---- native operations as script functions -----------------------------------------------------------

[[noreturn]] void ThrowOwnerGone();

namespace conversions {

template <class R, class... Args, class C, class Method>
std::function<R(Args...)> Bind(C* object, Method method) {
    if constexpr (std::is_base_of<util::Pointee, C>::value) {
        return [watch = util::WeakPtr<C>(object), method](Args... args) -> R {
            C* const target = watch.Get();
            if (target == nullptr) ThrowOwnerGone();
            return (target->*method)(args...);
        };
    } else {
        return [object, method](Args... args) -> R { return (object->*method)(args...); };
    }
}

}  // namespace conversions

// The method of an object as a plain callable. Counted objects are watched, so that a command that outlives
// its object fails instead of touching freed memory.
template <class C, class R, class B, class... Args>
std::function<R(Args...)> BindMethod(C* object, R (B::*method)(Args...)) {
    return conversions::Bind<R, Args...>(object, method);
}
template <class C, class R, class B, class... Args>
std::function<R(Args...)> BindMethod(C* object, R (B::*method)(Args...) const) {
    return conversions::Bind<R, Args...>(object, method);
}

namespace conversions {

// The parameter types of a callable, by its call operator.
template <class F>
struct Signature : Signature<decltype(&F::operator())> {};
template <class R, class... Args>
struct Signature<R (*)(Args...)> {
    using Result = R;
    template <size_t I>
    using Arg = std::decay_t<std::tuple_element_t<I, std::tuple<Args...>>>;
};
template <class R, class... Args>
struct Signature<std::function<R(Args...)>> : Signature<R (*)(Args...)> {};
template <class C, class R, class... Args>
struct Signature<R (C::*)(Args...)> : Signature<R (*)(Args...)> {};
template <class C, class R, class... Args>
struct Signature<R (C::*)(Args...) const> : Signature<R (*)(Args...)> {};

template <class Callable, class... Args>
ObjectPtr CallToObject(const Callable& callable, const Args&... args) {
    if constexpr (std::is_void<typename Signature<Callable>::Result>::value) {
        callable(args...);
        return MakeVoid();
    } else {
        return conversions::ToObject(callable(args...));
    }
}

}  // namespace conversions

template <class Callable>
ObjectPtr MakeCmd(Callable callable) {
    return new IntrinsicCmd([callable] { return conversions::CallToObject(callable); });
}
template <class Callable>
ObjectPtr MakeCmd1(Callable callable) {
    using S = conversions::Signature<Callable>;
    using A = typename S::template Arg<0>;
    return new IntrinsicCmd1(
        [callable](const ObjectPtr& a) { return conversions::CallToObject(callable, ObjectToValue<A>(a)); });
}
template <class Callable>
ObjectPtr MakeCmd2(Callable callable) {
    using S = conversions::Signature<Callable>;
    using A = typename S::template Arg<0>;
    using B = typename S::template Arg<1>;
    return new IntrinsicCmd2([callable](const ObjectPtr& a, const ObjectPtr& b) {
        return conversions::CallToObject(callable, ObjectToValue<A>(a), ObjectToValue<B>(b));
    });
}

}  // namespace script
