#include "script/Intrinsics.h"

#include <cmath>
#include <cstdint>

#include "script/Exceptions.h"
#include "script/Limits.h"
#include "script/Parser.h"

namespace script {

namespace {

using Operation = ObjectPtr (*)(const ObjectPtr&, const ObjectPtr&);

// ---- numbers: ints wrap around at 32 bits, floats follow IEEE ------------------------------------------

Int AddInt(Int a, Int b) {
    return static_cast<Int>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
Int SubtractInt(Int a, Int b) {
    return static_cast<Int>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
Int MultiplyInt(Int a, Int b) {
    return static_cast<Int>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
// Truncates towards zero. The one quotient that does not fit wraps around like the rest.
Int DivInt(Int a, Int b) {
    if (b == 0) THROW(ScriptException, "Division by zero");
    return b == -1 ? SubtractInt(0, a) : a / b;
}

Float AddFloat(Float a, Float b) {
    return a + b;
}
Float SubtractFloat(Float a, Float b) {
    return a - b;
}
Float MultiplyFloat(Float a, Float b) {
    return a * b;
}
Float DivFloat(Float a, Float b) {
    return a / b;
}

// Null when `a` is no number.
ObjectPtr NumFun(const ObjectPtr& a, const ObjectPtr& b, Int (*intFn)(Int, Int),
                 Float (*floatFn)(Float, Float), const char* name) {
    if (const Int* const intA = ValueOf<Int>(a)) {
        if (const Int* const intB = ValueOf<Int>(b)) return ValueToObject(intFn(*intA, *intB));
        if (const Float* const floatB = ValueOf<Float>(b)) return ValueToObject(floatFn(*intA, *floatB));
        THROW(ScriptException, String("Cannot ") + name + " an int to a non-number");
    }
    if (const Float* const floatA = ValueOf<Float>(a)) {
        return ValueToObject(floatFn(*floatA, ObjectToValue<Float>(b)));
    }
    return nullptr;
}

// ---- lists -------------------------------------------------------------------------------------------

constexpr int64_t ELEMENT_STEPS = 4;  // an element costs an object, in time and in memory

void ChargeElements(const ObjectList& list) {
    ChargeSteps(ELEMENT_STEPS * static_cast<int64_t>(list.size()));
}

void AppendUnlessNull(ObjectList& list, const ObjectPtr& object) {
    if (object) list.push_back(object);
}

// Element by element; null when `a` is no list.
ObjectPtr ListRecurse(const ObjectPtr& a, const ObjectPtr& b, Operation fn, const char* name) {
    const NestingGuard guard;
    const ObjectList* const listA = ListOf(a);
    if (listA == nullptr) return nullptr;
    const ObjectList* const listB = ListOf(b);
    if (listB == nullptr) THROW(ScriptException, String("Cannot ") + name + " list and no-list");
    const size_t size = listA->size();
    if (size != listB->size()) THROW(ScriptException, String("Cannot ") + name + " lists of different size");
    ChargeElements(*listA);
    ObjectList result;
    result.reserve(size);
    for (size_t i = 0; i < size; ++i) AppendUnlessNull(result, fn((*listA)[i], (*listB)[i]));
    return new List(std::move(result));
}

ObjectPtr ListMap(const ObjectList& list, const ObjectPtr& scalar, Operation fn) {
    const NestingGuard guard;
    ChargeElements(list);
    ObjectList result;
    result.reserve(list.size());
    for (const ObjectPtr& element : list) AppendUnlessNull(result, fn(element, scalar));
    return new List(std::move(result));
}

ObjectPtr MapFloat(const ObjectPtr& x, double (*fn)(double)) {
    const NestingGuard guard;
    const ObjectList* const list = ListOf(x);
    if (list == nullptr) return ValueToObject(fn(ObjectToValue<Float>(x)));
    ChargeElements(*list);
    ObjectList result;
    result.reserve(list->size());
    for (const ObjectPtr& element : *list) AppendUnlessNull(result, MapFloat(element, fn));
    return new List(std::move(result));
}

// ---- strings -----------------------------------------------------------------------------------------

ObjectPtr Concatenate(const String& a, const String& b) {
    ChargeBytes(a.size() + b.size());
    CheckStringSize(a.size() + b.size());
    return ValueToObject(a + b);
}

[[noreturn]] void Fail(const String& operation, const ObjectPtr& a, const ObjectPtr& b) {
    THROW(ScriptException, "Failed: " + operation + "(" + a->ToCode() + ", " + b->ToCode() + ")");
}

}  // namespace

ObjectPtr Add(const ObjectPtr& a, const ObjectPtr& b) {
    const String* const textA = ValueOf<String>(a);
    const String* const textB = ValueOf<String>(b);
    if (textA != nullptr && textB != nullptr) return Concatenate(*textA, *textB);
    if (textA != nullptr) return Concatenate(*textA, b->ToCode());
    if (textB != nullptr) return Concatenate(a->ToCode(), *textB);
    if (const ObjectPtr number = NumFun(a, b, AddInt, AddFloat, "add")) return number;
    if (const ObjectPtr list = ListRecurse(a, b, Add, "add")) return list;
    Fail("Add", a, b);
}

ObjectPtr Subtract(const ObjectPtr& a, const ObjectPtr& b) {
    if (const ObjectPtr number = NumFun(a, b, SubtractInt, SubtractFloat, "substract")) return number;
    if (const ObjectPtr list = ListRecurse(a, b, Subtract, "substract")) return list;
    Fail("Substract", a, b);
}

ObjectPtr Multiply(const ObjectPtr& a, const ObjectPtr& b) {
    const ObjectList* const listA = ListOf(a);
    const ObjectList* const listB = ListOf(b);
    if (listA != nullptr && listB != nullptr) return ListRecurse(a, b, Multiply, "multiply");
    if (listA != nullptr) return ListMap(*listA, b, Multiply);
    if (listB != nullptr) return ListMap(*listB, a, Multiply);
    if (const ObjectPtr number = NumFun(a, b, MultiplyInt, MultiplyFloat, "multiply")) return number;
    Fail("Multiply", a, b);
}

ObjectPtr Divide(const ObjectPtr& a, const ObjectPtr& b) {
    const ObjectList* const listA = ListOf(a);
    if (listA == nullptr) {
        if (const ObjectPtr number = NumFun(a, b, DivInt, DivFloat, "divide")) return number;
        Fail("Divide", a, b);
    }
    if (ListOf(b) != nullptr) return ListRecurse(a, b, Divide, "divide");
    return ListMap(*listA, b, Divide);
}

// ---- registration ------------------------------------------------------------------------------------

namespace {

constexpr Float PI = 3.141592653589793;
// One value for all four: two different ones in one parenthesis level tie, and need parentheses.
constexpr double ARITHMETIC_PRECEDENCE = 2;
constexpr double NOT_PRECEDENCE = 5;

struct Arithmetic {
    const char* name;
    const char* keyword;
    Operation operation;
};
constexpr Arithmetic ARITHMETIC[] = {
    {"add", "+", Add},
    {"substract", "-", Subtract},  // spelled so: user scripts name it
    {"multiply", "*", Multiply},
    {"divide", "/", Divide},
};

struct Trigonometry {
    const char* name;
    double (*fn)(double);
};
constexpr Trigonometry TRIGONOMETRY[] = {
    {"sin", std::sin},   {"cos", std::cos},   {"tan", std::tan},
    {"asin", std::asin}, {"acos", std::acos}, {"atan", std::atan},
};

}  // namespace

ClosurePtr RegisterIntrinsics(Parser& parser) {
    const ClosurePtr math = new Closure("[closure]");
    parser.GetRootClosure()->AddValue("math", math);
    const IdentifierPtr mathName = new Identifier("math");
    for (const Arithmetic& row : ARITHMETIC) {
        math->AddCmd2(row.name, row.operation);
        parser.AddInfix(new Infix(ARITHMETIC_PRECEDENCE, false, {"", row.keyword, ""},
                                  new Identifier(mathName, row.name)));
    }
    math->AddCmd1(
        "negate", +[](bool value) { return !value; });
    parser.AddInfix(new Infix(NOT_PRECEDENCE, true, {"!", ""}, new Identifier(mathName, "negate")));
    for (const Trigonometry& row : TRIGONOMETRY) {
        math->AddCmd1(row.name, [fn = row.fn](const ObjectPtr& x) { return MapFloat(x, fn); });
    }
    math->AddCmd(
        "pi", +[] { return PI; });
    for (const VariablePtr& variable : math->GetVariables()) math->AllowGuests({variable->GetName().c_str()});
    return math;
}

}  // namespace script
