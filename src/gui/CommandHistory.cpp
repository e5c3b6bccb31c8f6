#include "gui/CommandHistory.h"

#include <algorithm>

#include "util/Exception.h"
#include "util/FileSystem.h"

namespace gui {
namespace {

constexpr size_t MAX_COMMANDS = 10000;
constexpr size_t MAX_SAVED_COMMANDS = 500;

}  // namespace

void CommandHistory::SetFile(const String& path) {
    m_path = path;
    if (!util::FileSystem::Instance().Exists(path)) return;
    try {
        const String text = util::FileSystem::Instance().ReadFile(path);
        for (size_t begin = 0, end; begin < text.size(); begin = end + 1) {
            end = std::min(text.find('\n', begin), text.size());
            if (end > begin) m_commands.push_back(text.substr(begin, end - begin));
        }
    } catch (const std::exception& e) {
        LogException(e, WHERE);  // a console without its past is still one
    }
}

void CommandHistory::Add(const String& command) {
    m_commands.push_back(command);
    if (m_commands.size() > MAX_COMMANDS) m_commands.erase(m_commands.begin());
    Save();
}

// A command of several lines would come back as several commands.
void CommandHistory::Save() const {
    if (m_path.empty()) return;
    String text;
    const size_t first = m_commands.size() - std::min(m_commands.size(), MAX_SAVED_COMMANDS);
    for (size_t i = first; i < m_commands.size(); ++i) {
        if (m_commands[i].find('\n') == String::npos) text += m_commands[i] + "\n";
    }
    try {
        util::FileSystem::Instance().WriteFileAtomically(m_path, text);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
    }
}

bool CommandHistory::GoBack(String& line) {
    if (m_index >= 0) {
        m_index = std::max(m_index - 1, 0);
    } else {
        const int last = static_cast<int>(m_commands.size()) - 1;
        if (last < 0) return false;
        m_index = last;  // in front of the line that is kept below
        if (!line.empty()) Add(line);
    }
    line = m_commands[m_index];
    return true;
}

bool CommandHistory::GoForward(String& line) {
    if (m_index < 0) {
        if (line.empty()) return false;
        Add(line);
        line.clear();
    } else if (m_index + 1 >= static_cast<int>(m_commands.size())) {
        StopWalking();
        line.clear();
    } else {
        line = m_commands[++m_index];
    }
    return true;
}

}  // namespace gui
