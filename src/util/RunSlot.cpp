#include "util/RunSlot.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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

// The open, locked file; -1 when another program holds it, -2 when it cannot be made at all.
int OpenLock(int number) {
    const String path = GetFiles().GetWorkDir() + NameInSlot(LOCK_FILE, number);
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) return -2;
    if (flock(file, LOCK_EX | LOCK_NB) == 0) return file;
    close(file);
    return -1;
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
    if (lock == -1 && number < MAX_SLOTS) return false;
    m_number = lock == -2 ? 1 : number;
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
    int number = 1;
    String name;
    do {
        name = "recovered-" + std::to_string(number++) + ".vxa";
    } while (GetFiles().Exists(folder + name));
    try {
        GetFiles().Rename(folder + scene, folder + name);
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

void RunSlot::SweepTemporaries() const {
    if (m_number != 1) return;
    const std::pair<String, String> places[] = {{GetFiles().GetScenesDir(), "*.vxa" + TEMPORARY_ENDING},
                                                {GetFiles().GetWorkDir(), "*.cfg" + TEMPORARY_ENDING}};
    for (const auto& [folder, mask] : places) {
        for (const String& name : GetFiles().ListFiles(folder, mask)) {
            try {
                GetFiles().Remove(folder + name);
            } catch (const std::exception& e) {
                Log(logging::Warning, "Could not remove \"" + name + "\": " + e.what());
            }
        }
    }
}

}  // namespace util
