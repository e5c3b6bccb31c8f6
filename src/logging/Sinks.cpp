#include "logging/Sinks.h"

#include <ctime>
#include <ostream>

#include "util/Exception.h"
#include "util/Version.h"

namespace logging {

namespace {

String FormatNow(const char* format) {
    const std::time_t now = std::time(nullptr);
    char buffer[128];
    const size_t length = std::strftime(buffer, sizeof(buffer), format, std::localtime(&now));
    return String(buffer, length);
}

constexpr size_t BANNER_WIDTH = 29;

// A stranger's text must not command the terminal on which it is read.
String WithoutControls(String text) {
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 32 && c != '\n' && c != '\t') || byte == 127) c = '?';
    }
    return text;
}

}  // namespace

void StreamLogger::Log(const String& text) {
    m_stream << WithoutControls(text) << std::endl;
}

FileLogger::FileLogger(int levels, const String& path, bool append) : ILogger(levels) {
    const bool goOn = append && std::ifstream(path).good();
    m_file.open(path, goOn ? std::ios::app : std::ios::trunc);
    if (goOn) m_file << "\n\n";
    WriteBanner();
}

void FileLogger::WriteBanner() {
    const String rule(BANNER_WIDTH, '-');
    m_file << rule << "\n  " << util::VERSION_TEXT << "\n  " << FormatNow("%B %d %Y, %X") << "\n"
           << rule << std::endl;
}

void FileLogger::Log(const String& text) {
    m_file << FormatNow("%H:%M:%S: ") << WithoutControls(text) << std::endl;
}

void FunctionLogger::Log(const String& text) {
    try {
        m_function(text);
    } catch (...) {
        LogUnknownException("ERROR - Failed to log text: " + text);
    }
}

}  // namespace logging
