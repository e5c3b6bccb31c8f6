#include "script/Conversions.h"

#include "script/Exceptions.h"

namespace script {

// ---- reading -----------------------------------------------------------------------------------------

namespace {

const ObjectList& GetList(const ObjectPtr& object) {
    const ObjectList* const list = ListOf(object);
    if (list == nullptr) THROW(ScriptException, "Not a list");
    return *list;
}

const ObjectList& GetList(const ObjectPtr& object, size_t size, const char* failure) {
    const ObjectList& list = GetList(object);
    if (list.size() != size) THROW(ScriptException, failure);
    return list;
}

template <class Container>
Container VectorsOf(const ObjectPtr& object) {
    Container vectors;
    for (const ObjectPtr& element : GetList(object)) vectors.push_back(ObjectToValue<math::Vec2>(element));
    return vectors;
}

}  // namespace

template <>
bool ObjectToValue(const ObjectPtr& object) {
    if (const bool* const value = ValueOf<bool>(object)) return *value;
    THROW(ScriptException, "Not a bool");
}

template <>
int ObjectToValue(const ObjectPtr& object) {
    if (const int* const value = ValueOf<int>(object)) return *value;
    THROW(ScriptException, "Not an integer");
}

template <>
unsigned int ObjectToValue(const ObjectPtr& object) {
    return static_cast<unsigned int>(ObjectToValue<int>(object));
}

template <>
double ObjectToValue(const ObjectPtr& object) {
    if (const double* const value = ValueOf<double>(object)) return *value;
    if (const int* const value = ValueOf<int>(object)) return *value;
    THROW(ScriptException, "Not a float");
}

template <>
long double ObjectToValue(const ObjectPtr& object) {
    return ObjectToValue<double>(object);
}

template <>
float ObjectToValue(const ObjectPtr& object) {
    return static_cast<float>(ObjectToValue<double>(object));
}

template <>
String ObjectToValue(const ObjectPtr& object) {
    if (const String* const value = ValueOf<String>(object)) return *value;
    THROW(ScriptException, "Not a string");
}

template <>
ObjectPtr ObjectToValue(const ObjectPtr& object) {
    return object;
}

template <>
ObjectList ObjectToValue(const ObjectPtr& object) {
    return GetList(object);
}

template <>
math::TVector2<float> ObjectToValue(const ObjectPtr& object) {
    const ObjectList& list = GetList(object, 2, "Not a vector");
    return {ObjectToValue<float>(list[0]), ObjectToValue<float>(list[1])};
}

template <>
math::TVector2<int> ObjectToValue(const ObjectPtr& object) {
    const ObjectList& list = GetList(object, 2, "Not a vector");
    return {ObjectToValue<int>(list[0]), ObjectToValue<int>(list[1])};
}

template <>
math::TVector3<float> ObjectToValue(const ObjectPtr& object) {
    const ObjectList& list = GetList(object, 3, "Not a vector");
    return {ObjectToValue<float>(list[0]), ObjectToValue<float>(list[1]), ObjectToValue<float>(list[2])};
}

template <>
math::TVector4<float> ObjectToValue(const ObjectPtr& object) {
    const ObjectList& list = GetList(object, 4, "Not a vector");
    return {ObjectToValue<float>(list[0]), ObjectToValue<float>(list[1]), ObjectToValue<float>(list[2]),
            ObjectToValue<float>(list[3])};
}

template <>
math::Vec2List ObjectToValue(const ObjectPtr& object) {
    return VectorsOf<math::Vec2List>(object);
}

template <>
std::vector<math::Vec2> ObjectToValue(const ObjectPtr& object) {
    return VectorsOf<std::vector<math::Vec2>>(object);
}

template <>
math::BoundingBox2f ObjectToValue(const ObjectPtr& object) {
    const ObjectList& list = GetList(object, 2, "Not a bounding box");
    return {ObjectToValue<math::Vec2>(list[0]), ObjectToValue<math::Vec2>(list[1])};
}

// ---- building ----------------------------------------------------------------------------------------

namespace conversions {

namespace {

template <class... Elements>
ObjectPtr MakeList(Elements... elements) {
    return new List(ObjectList{ToObject(elements)...});
}

template <class Container>
ObjectPtr MakeListOfVectors(const Container& vectors) {
    ObjectList list;
    list.reserve(vectors.size());
    for (const math::Vec2& vector : vectors) list.push_back(ToObject(vector));
    return new List(std::move(list));
}

}  // namespace

ObjectPtr ToObject(bool value) {
    return new Value<bool>(value);
}
ObjectPtr ToObject(int value) {
    return new Value<int>(value);
}
ObjectPtr ToObject(unsigned int value) {
    return new Value<int>(static_cast<int>(value));
}
ObjectPtr ToObject(double value) {
    return new Value<double>(value);
}
ObjectPtr ToObject(const String& value) {
    return new Value<String>(value);
}
ObjectPtr ToObject(const ObjectPtr& value) {
    return value;
}
ObjectPtr ToObject(const ObjectList& value) {
    return new List(value);
}
ObjectPtr ToObject(const math::TVector2<float>& value) {
    return MakeList(value.x, value.y);
}
ObjectPtr ToObject(const math::TVector2<int>& value) {
    return MakeList(value.x, value.y);
}
ObjectPtr ToObject(const math::TVector3<float>& value) {
    return MakeList(value.x, value.y, value.z);
}
ObjectPtr ToObject(const math::TVector4<float>& value) {
    return MakeList(value.x, value.y, value.z, value.w);
}
ObjectPtr ToObject(const math::Vec2List& value) {
    return MakeListOfVectors(value);
}
ObjectPtr ToObject(const std::vector<math::Vec2>& value) {
    return MakeListOfVectors(value);
}
ObjectPtr ToObject(const math::BoundingBox2f& value) {
    return MakeList(value.min, value.max);
}

}  // namespace conversions

void ThrowOwnerGone() {
    THROW(ScriptException, "The object of this command is gone");
}

}  // namespace script
