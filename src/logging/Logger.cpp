#include "logging/Logger.h"

#include <fstream>
#include <utility>

#include "util/Exception.h"
#include "util/FileSystem.h"

// Tests for the services without creating them: this must work before they exist and after they are gone.
void Log(logging::LogLevel level, const std::string& text) {
    if (logging::Logger::IsCreated()) {
        logging::Logger::Instance().Log(level, text);
        return;
    }
    const String directory =
        util::FileSystem::IsCreated() ? util::FileSystem::Instance().GetWorkDir() : String();
    std::ofstream(directory + "Unlogged.txt", std::ios::app) << text << "\n";
}

namespace logging {

constexpr size_t MAX_EARLY_LINES = 1000;
constexpr size_t MAX_WARNING = 16u << 10;  // bytes: a file may be quoted that is one endless line

void Logger::Log(LogLevel level, const String& text) {
    const bool filtered = level == Warning || level == Error;
    String line = text;
    if (filtered && line.size() > MAX_WARNING) line = line.substr(0, MAX_WARNING) + " ...";
    if (level == Warning) line = WARNING_PREFIX + line;
    if (level == Error) line = ERROR_PREFIX + line;
    if (!m_thisFrame.insert(line).second && filtered) return;
    if (filtered && m_lastFrame.count(line) != 0) return;
    if (m_keepsEarlyLines && level != Trace && m_earlyLines.size() < MAX_EARLY_LINES) {
        m_earlyLines.push_back(line);
    }
    Distribute(level, line);
}

std::vector<String> Logger::TakeEarlyLines() {
    m_keepsEarlyLines = false;
    return std::exchange(m_earlyLines, {});
}

// A sink that throws would be told of its own failure without end: the inner message goes nowhere.
void Logger::Distribute(LogLevel level, const String& text) {
    static bool s_inFailure = false;
    const std::set<ILoggerPtr> sinks = m_loggers;
    for (const ILoggerPtr& sink : sinks) {
        if ((sink->GetLevels() & level) == 0) continue;
        try {
            sink->Log(text);
        } catch (...) {
            if (s_inFailure) continue;
            s_inFailure = true;
            LogUnknownException("ERROR - Failed to log text: " + text);
            s_inFailure = false;
        }
    }
}

void Logger::Update() {
    m_lastFrame.swap(m_thisFrame);
    m_thisFrame.clear();
}

}  // namespace logging
