#include "util/RunSlot.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include "logging/Log.h"
#include "util/Exception.h"
#include "util/FileNames.h"

namespace util {

namespace {

constexpr int MAX_SLOTS = 16;  // whoever comes after these shares the last one

FileSystem& GetFiles() {
    return FileSystem::Instance();
}

// "name.vxa" in the first slot, "name-2.vxa" in the second.
String NameInSlot(const String& name, int number) {
    if (number == 1) return name;
    const size_t dot = name.rfind('.');
    return name.substr(0, dot) + "-" + std::to_string(number) + name.substr(dot);
}

// Why there is no lock on a slot.
constexpr int HELD_BY_ANOTHER = -1, CANNOT_BE_MADE = -2;

// The open, locked file, or one of these two.
int OpenLock(int number) {
    const String path = GetFiles().GetWorkDir() + NameInSlot(LOCK_FILE, number);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) return CANNOT_BE_MADE;
    if (flock(file, LOCK_EX | LOCK_NB) == 0) return file;
    close(file);
    return HELD_BY_ANOTHER;
}

// Of the moment at which the scene was saved: the same from a name and from the file that it was given to,
// until the user renames or saves it.
String NameRecovered(const String& path) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) info.st_mtime = std::time(nullptr);
    std::tm local = {};
    localtime_r(&info.st_mtime, &local);
    char text[64] = "";
    std::strftime(text, sizeof text, "recovered-%Y-%m-%d-%H.%M.%S.vxa", &local);
    return text;
}

bool IsAsItWasKept(const String& name) {
    const String own = NameRecovered(GetFiles().GetScenesDir() + name);
    const size_t length = own.rfind('.');
    return name == own || (name.compare(0, length, own, 0, length) == 0 && name[length] == '-');
}

void TryToRemove(const String& path) {
    try {
        GetFiles().Remove(path);
    } catch (const std::exception& e) {
        Log(logging::Warning, "Could not remove \"" + path + "\": " + e.what());
    }
}

// Names tell the time, so their order is that of the scenes.
void RemoveOldRecovered(const String& justKept) {
    StringList kept;
    for (const String& name : GetFiles().ListFiles(GetFiles().GetScenesDir(), "recovered-*.vxa")) {
        if (name != justKept && IsAsItWasKept(name)) kept.push_back(name);
    }
    std::sort(kept.begin(), kept.end(), std::greater<>());
    for (size_t i = RunSlot::MAX_RECOVERED - 1; i < kept.size(); ++i) {
        TryToRemove(GetFiles().GetScenesDir() + kept[i]);
    }
}

}  // namespace

RunSlot::~RunSlot() {
    if (m_lock >= 0) close(m_lock);
}

RunSlot& RunSlot::Instance() {
    static RunSlot s_slot;
    return s_slot;
}

bool RunSlot::TakeSlot(int number) {
    const int lock = OpenLock(number);
    if (lock == HELD_BY_ANOTHER && number < MAX_SLOTS) return false;
    m_number = lock == CANNOT_BE_MADE ? 1 : number;
    m_lock = lock;
    return true;
}

void RunSlot::Take() {
    int number = 1;
    while (!TakeSlot(number)) ++number;
    if (m_number == 1) return;
    Log(logging::Warning,
        "Another Vexa is running in this folder; this one autosaves as \"" + GetAutosaveScene() + "\"");
}

String RunSlot::GetAutosaveScene() const {
    return NameInSlot(AUTOSAVE_SCENE, m_number);
}

String RunSlot::GetAutosaveConfig() const {
    return NameInSlot(AUTOSAVE_CONFIG_FILE, m_number);
}

String RunSlot::KeepAsRecovered(const String& scene) {
    const String folder = GetFiles().GetScenesDir();
    const String base = NameRecovered(folder + scene);
    String name = base;
    for (int number = 2; GetFiles().Exists(folder + name); ++number) name = NameInSlot(base, number);
    try {
        GetFiles().Rename(folder + scene, folder + name);
        RemoveOldRecovered(name);
    } catch (const std::exception& e) {
        Log(logging::Error, "Could not keep the recovered scene \"" + scene + "\": " + e.what());
        return String();
    }
    Log(logging::Warning, "A scene that a crash left is kept as \"" + name + "\"");
    return name;
}

StringList RunSlot::KeepOrphans() const {
    StringList kept;
    for (int number = 1; number <= MAX_SLOTS; ++number) {
        const String scene = NameInSlot(AUTOSAVE_SCENE, number);
        if (number == m_number || !GetFiles().Exists(GetFiles().GetScenesDir() + scene)) continue;
        const int lock = OpenLock(number);
        if (lock < 0) continue;
        const String name = KeepAsRecovered(scene);
        if (!name.empty()) kept.push_back(name);
        close(lock);
    }
    return kept;
}

void RunSlot::SweepTemporaries() {
    const std::pair<String, String> places[] = {{GetFiles().GetScenesDir(), "*.vxa."},
                                                {GetFiles().GetScenesDir(), "*.png."},
                                                {GetFiles().GetScreenshotsDir(), "*.png."},
                                                {GetFiles().GetWorkDir(), "*.cfg."},
                                                {GetFiles().GetWorkDir(), "*.history."}};
    for (const auto& [folder, form] : places) {
        for (const String& name : GetFiles().ListFiles(folder, form + "*" + TEMPORARY_ENDING)) {
            if (FileSystem::IsLeftOver(name)) TryToRemove(folder + name);
        }
    }
}

}  // namespace util
