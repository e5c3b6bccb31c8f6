#pragma once

#include <string>

// The one road of every diagnostic. A leaf header, so that any unit may log without knowing the logger.
namespace logging {

// A bit mask: a sink receives a message when its mask shares a bit with the message's level.
enum LogLevel {
    Warning = 1,    // something is wrong and the program goes on; filtered against repeats
    CodeError = 2,  // a failed code check
    DataError = 4,  // a failed data check
    Error = 6,      // an error message for the user; filtered against repeats
    Trace = 8,      // progress, of interest in the log file only
    Info = 16       // progress for the user
};

}  // namespace logging

// Hands `text` to the logger. While no logger exists the text goes to "Unlogged.txt" in the working
// directory. Never throws.
void Log(logging::LogLevel level, const std::string& text);
