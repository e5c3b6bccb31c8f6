#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "logging/Logger.h"

namespace test {

// Collects what is logged at the levels of `levels` while it lives. The repeat filter is turned over at
// both ends, so that an equal warning of an earlier test does not hide one of this test.
class LogCapture {
  public:
    explicit LogCapture(int levels = 31);
    ~LogCapture();

    const std::vector<String>& GetLines() const { return m_lines; }
    bool Contains(const String& part) const { return Count(part) > 0; }
    int Count(const String& part) const;  // lines that hold `part`
    void Clear() { m_lines.clear(); }

  private:
    std::vector<String> m_lines;
    logging::ILoggerPtr m_sink;
};

// Brings the logger up, so that no test writes "Unlogged.txt".
class LogEnvironment : public testing::Environment {
  public:
    void SetUp() override { logging::Logger::Instance(); }
};

}  // namespace test
