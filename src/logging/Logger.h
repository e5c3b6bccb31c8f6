#pragma once

#include <set>
#include <vector>

#include "logging/Log.h"
#include "logging/Sinks.h"
#include "util/Singleton.h"

namespace logging {

// Put before texts of exactly these levels, so that every reader knows them.
constexpr const char* WARNING_PREFIX = "-- Warning: ";
constexpr const char* ERROR_PREFIX = "!! ERROR: ";

// Distributes messages to sinks and keeps a repeating warning from flooding the log at frame rate: a text
// of level Warning or Error is passed on only if neither this frame nor the last one has had it, and cut when
// it is very long.
class Logger : public util::Pointee, public util::Singleton<Logger> {
  public:
    void AddLogger(const ILoggerPtr& sink) { m_loggers.insert(sink); }
    void RemoveLogger(const ILoggerPtr& sink) { m_loggers.erase(sink); }

    // Never throws.
    void Log(LogLevel level, const String& text);

    // What was for the user to read since the start, up to a thousand lines, for a reader who comes late;
    // from then on nothing is kept.
    std::vector<String> TakeEarlyLines();

    // Once per frame: what was said in this frame becomes last frame's.
    void Update();

  private:
    void Distribute(LogLevel level, const String& text);

    std::set<ILoggerPtr> m_loggers;
    std::set<String> m_lastFrame;
    std::set<String> m_thisFrame;
    bool m_keepsEarlyLines = true;
    std::vector<String> m_earlyLines;
};

}  // namespace logging
