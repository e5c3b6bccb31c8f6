#include "core/ComposeTable.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace core {

namespace {

const char* const FOLDERS_PATH = "/usr/share/X11/locale/compose.dir";
const char* const COMMON_TABLE = "en_US.UTF-8/Compose";

// Empty when it is not set; an empty one counts as not set.
std::string GetVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

// In the library's spelling.
std::string GetLocale() {
    std::string locale;
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (locale.empty()) locale = GetVariable(name);
    }
    const size_t codeset = locale.find(".utf8");
    return codeset == std::string::npos ? locale : locale.replace(codeset, 5, ".UTF-8");
}

std::string ReadText(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

bool HasCommonComposeTable(const std::string& folders, const std::string& locale) {
    if (locale.empty()) return false;
    std::istringstream lines(folders);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string table, name;
        words >> table >> name;
        if (!table.empty() && table.back() == ':') table.pop_back();
        if (table == COMMON_TABLE && name == locale) return true;
    }
    return false;
}

void ChooseComposeTable(const std::string& tablePath) {
    if (std::getenv("XCOMPOSEFILE") != nullptr) return;
    const std::string own = GetVariable("HOME") + "/.XCompose";
    if (access(own.c_str(), F_OK) == 0 || access(tablePath.c_str(), R_OK) != 0) return;
    if (!HasCommonComposeTable(ReadText(FOLDERS_PATH), GetLocale())) return;
    setenv("XCOMPOSEFILE", tablePath.c_str(), 1);
}

}  // namespace core
