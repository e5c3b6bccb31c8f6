#pragma once

#include <fstream>
#include <functional>
#include <iosfwd>

#include "util/Pointee.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace logging {

// A place where log lines go.
class ILogger : public util::Pointee {
  public:
    explicit ILogger(int levels) : m_levels(levels) {}
    int GetLevels() const { return m_levels; }
    virtual void Log(const String& text) = 0;

  private:
    int m_levels;  // mask of LogLevel bits that this sink wants
};
using ILoggerPtr = util::SharedPtr<ILogger>;

// Writes lines to a stream that it does not own, each flushed, control characters as question marks.
class StreamLogger : public ILogger {
  public:
    StreamLogger(int levels, std::ostream& stream) : ILogger(levels), m_stream(stream) {}
    void Log(const String& text) override;

  private:
    std::ostream& m_stream;
};

// Writes lines to a file of its own, each behind the time of day and flushed. A file that cannot be opened
// swallows its lines.
class FileLogger : public ILogger {
  public:
    FileLogger(int levels, const String& path, bool append);
    void Log(const String& text) override;

  private:
    void WriteBanner();

    std::ofstream m_file;
};

// Hands lines to a function; what the function throws is logged elsewhere.
class FunctionLogger : public ILogger {
  public:
    FunctionLogger(int levels, const std::function<void(const String&)>& function)
        : ILogger(levels), m_function(function) {}
    void Log(const String& text) override;

  private:
    std::function<void(const String&)> m_function;
};

}  // namespace logging
