#include "support/LogCapture.h"

#include <algorithm>

namespace test {

static void ForgetRepeats() {
    logging::Logger::Instance().Update();
    logging::Logger::Instance().Update();
}

LogCapture::LogCapture(int levels) {
    ForgetRepeats();
    m_sink = new logging::FunctionLogger(levels, [this](const String& line) { m_lines.push_back(line); });
    logging::Logger::Instance().AddLogger(m_sink);
}

LogCapture::~LogCapture() {
    logging::Logger::Instance().RemoveLogger(m_sink);
    ForgetRepeats();
}

int LogCapture::Count(const String& part) const {
    return static_cast<int>(std::count_if(
        m_lines.begin(), m_lines.end(), [&](const String& line) { return line.find(part) != String::npos; }));
}

}  // namespace test
