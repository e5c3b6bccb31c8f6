#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

#include "script/Attributes.h"
#include "script/Parser.h"

namespace test {

// One setting of the type T: it begins as its default, takes another value, and the text that is saved of it
// brings that value back. Answers whether `attrib` is of that type.
template <class T>
bool CheckSettingAs(script::AbstractAttrib& attrib, std::initializer_list<T> values) {
    const auto typed = dynamic_cast<script::TAttrib<T>*>(&attrib);
    if (typed == nullptr) return false;
    const T standard = typed->GetDefault();
    bool takesAnother = false;
    for (const T& value : values) {
        typed->SetValue(typed->MakeDefault());
        EXPECT_EQ(typed->Get(), standard);
        typed->Set(value);
        const T taken = typed->Get();
        takesAnother |= !(taken == standard);
        const String text = typed->ToAssignment()->ToCode();
        typed->SetValue(typed->MakeDefault());
        script::Parser::Instance().Execute(text);
        EXPECT_TRUE(typed->Get() == taken) << text;
    }
    EXPECT_TRUE(takesAnother);
    typed->SetValue(typed->MakeDefault());
    return true;
}

// The same for whatever type it is, by values that are awkward to write down or that single settings know.
inline void CheckSetting(script::AbstractAttrib& attrib) {
    SCOPED_TRACE(attrib.GetName());
    constexpr float THIRD = 1.0f / 3, SMALL = 1e-20f, LEAST = -3.4e38f;
    constexpr float INF = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(CheckSettingAs<bool>(attrib, {false, true}) || CheckSettingAs<int>(attrib, {-7, 3}) ||
                CheckSettingAs<unsigned int>(attrib, {4000000000u}) ||
                CheckSettingAs<float>(attrib, {THIRD, 2, SMALL, LEAST, INF}) ||
                CheckSettingAs<String>(attrib, {"two words", "\"\\\n", "circle", "German"}) ||
                CheckSettingAs<math::Vec2>(attrib, {{SMALL, LEAST}}) ||
                CheckSettingAs<math::Vec2i>(attrib, {{640, 480}}) ||
                CheckSettingAs<math::Vec3>(attrib, {{THIRD, INF, 1e8f}}) ||
                CheckSettingAs<math::Vec4>(attrib, {{0.1f, 0.2f, 0.3f, 0.4f}}));
}

// All settings that an object has of its own, but for one.
inline void CheckSettings(const script::ClassObject& owner, const String& except = "") {
    for (const script::VariablePtr& variable : owner.GetVariables()) {
        const auto attrib = util::DynamicCast<script::AbstractAttrib>(variable);
        if (attrib && attrib->GetName() != except) CheckSetting(*attrib);
    }
}

}  // namespace test
