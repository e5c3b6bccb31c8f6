#pragma once

#include <gtest/gtest.h>

#include "script/Attributes.h"
#include "script/Parser.h"
#include "support/LogCapture.h"

namespace test {

// What a part of the program looks like to scripts: attributes of each kind and commands.
class Gadget : public script::Reflected {
  public:
    explicit Gadget(const String& name = "Gadget");

    float m_levelValue = 0.5f;
    math::Vec2i m_sizeValue{800, 600};
    int m_resets = 0;

    const script::AttribPtr<bool> m_on;
    const script::AttribPtr<int> m_count;
    const script::AttribPtr<unsigned int> m_limit;
    const script::AttribPtr<float> m_speed;
    const script::AttribPtr<String> m_title;
    const script::AttribPtr<math::Vec2> m_gravity;
    const script::AttribPtr<math::Vec3> m_tint;
    const script::AttribPtr<math::Vec4> m_color;
    const script::AttribGetSetPtr<float> m_level;  // clamped to 0 ... 1 by its setter
    const script::AttribRemotePokerPtr<math::Vec2i> m_size;

  private:
    void Reset() { ++m_resets; }
    int Twice(int x) const { return 2 * x; }
    String Repeat(const String& text, int count) const;
};
using GadgetPtr = util::SharedPtr<Gadget>;

// The parser with an empty root: each test starts without variables but `math`, and with a Gadget. The
// parser cannot be made twice in a process, so its operators from earlier tests stay.
class Script : public testing::Test {
  protected:
    Script();
    ~Script() override;

    script::Parser& m_parser;
    GadgetPtr m_gadget;
    std::vector<String> m_errors;  // what reached the error sink
    LogCapture m_log;              // warnings and errors

    String Run(const String& text) { return m_parser.ExecuteToString(text); }
    script::ObjectPtr Get(const String& name) const;  // a root variable's value
};

}  // namespace test
