#include "script/Conversions.h"

#include "ScriptFixture.h"
#include "script/Exceptions.h"
#include "support/FailureOf.h"

namespace script {

class Converting : public test::Script {
  protected:
    // The failure of converting the value of `text` to T; empty when there is none.
    template <class T>
    String Failure(const String& text) {
        return FailureOf<T>(m_parser.Execute(text));
    }
    template <class T>
    static String FailureOf(const ObjectPtr& object) {
        return test::FailureOf<ScriptException>([&] { ObjectToValue<T>(object); });
    }
};

TEST_F(Converting, RefusesOtherTypes) {
    for (const char* text : {"1", "1.0", "\"true\"", "[true]", "math"})
        EXPECT_EQ(Failure<bool>(text), "Not a bool");
    for (const char* text : {"1.0", "true", "\"1\""}) {
        EXPECT_EQ(Failure<int>(text), "Not an integer");
        EXPECT_EQ(Failure<unsigned int>(text), "Not an integer");
    }
    for (const char* text : {"true", "\"1\"", "[1]"}) {
        EXPECT_EQ(Failure<float>(text), "Not a float");
        EXPECT_EQ(Failure<double>(text), "Not a float");
        EXPECT_EQ(Failure<long double>(text), "Not a float");
    }
    EXPECT_EQ(Failure<String>("1"), "Not a string");
    EXPECT_EQ(Failure<ObjectList>("1"), "Not a list");
    EXPECT_EQ(Failure<math::Vec2>("1"), "Not a list");
    EXPECT_EQ(Failure<math::Vec2>("[1]"), "Not a vector");
    EXPECT_EQ(Failure<math::Vec2>("[1, true]"), "Not a float");
    EXPECT_EQ(Failure<math::Vec2i>("[1, 2.0]"), "Not an integer");
    EXPECT_EQ(Failure<math::Vec3>("[1, 2]"), "Not a vector");
    EXPECT_EQ(Failure<math::Vec4>("[1, 2, 3]"), "Not a vector");
    EXPECT_EQ(Failure<math::Vec2List>("[[1, 2], [3]]"), "Not a vector");
    EXPECT_EQ(Failure<math::BoundingBox2f>("[[1, 2]]"), "Not a bounding box");
}

TEST_F(Converting, NullIsTheWrongType) {
    EXPECT_EQ(FailureOf<bool>(nullptr), "Not a bool");
    EXPECT_EQ(FailureOf<int>(nullptr), "Not an integer");
    EXPECT_EQ(FailureOf<float>(nullptr), "Not a float");
    EXPECT_EQ(FailureOf<String>(nullptr), "Not a string");
    EXPECT_EQ(FailureOf<math::Vec2>(nullptr), "Not a list");
}

template <class T>
static void ExpectRoundTrip(const T& value, const String& code) {
    const ObjectPtr object = ValueToObject(value);
    EXPECT_EQ(object->ToExpression()->ToCode(), code);
    EXPECT_EQ(ObjectToValue<T>(object), value);
}

TEST_F(Converting, RoundTrips) {
    ExpectRoundTrip(true, "true");
    ExpectRoundTrip(-5, "-5");
    ExpectRoundTrip(4294967295u, "-1");
    ExpectRoundTrip(1.5f, "1.5");
    ExpectRoundTrip(2.0, "2.0");
    ExpectRoundTrip(String("a"), "\"a\"");
    ExpectRoundTrip(math::Vec2(1, 2), "[1.0, 2.0]");
    ExpectRoundTrip(math::Vec2i(1, 2), "[1, 2]");
    ExpectRoundTrip(math::Vec3(1, 2, 3), "[1.0, 2.0, 3.0]");
    ExpectRoundTrip(math::Vec4(1, 2, 3, 4), "[1.0, 2.0, 3.0, 4.0]");
    ExpectRoundTrip(std::vector<math::Vec2>{{1, 2}, {3, 4}}, "[[1.0, 2.0], [3.0, 4.0]]");
    ExpectRoundTrip(math::BoundingBox2f({0, 1}, {2, 3}), "[[0.0, 1.0], [2.0, 3.0]]");
    EXPECT_EQ(ValueToObject("text")->ToCode(), "text");
    EXPECT_EQ(ObjectToValue<float>(ValueToObject(3)), 3.0f);
}

}  // namespace script
