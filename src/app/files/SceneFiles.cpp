#include "app/files/SceneFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <limits>
#include <map>

#include "app/files/SceneWriter.h"
#include "util/Exception.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"
#include "util/RunSlot.h"

namespace app {

namespace {

constexpr const char* SLASHES = "/\\";

bool IsPath(const String& name) {
    return name.find_first_of(SLASHES) != String::npos;
}

}  // namespace

String CleanSceneName(const String& name) {
    String clean;
    for (const char c : name) {
        const bool leading = clean.empty() && (c == '.' || c == ' ' || c == '_');
        if (leading || static_cast<unsigned char>(c) < 32 || c == '/' || c == '\\') continue;
        clean += c;
    }
    if (clean.empty() || boost::algorithm::ends_with(clean, SCENE_ENDING)) return clean;
    return clean + SCENE_ENDING;
}

String StripSceneEnding(const String& name) {
    return boost::algorithm::ends_with(name, SCENE_ENDING) ? name.substr(0, name.size() - SCENE_ENDING.size())
                                                           : name;
}

String GetFileName(const String& path) {
    return path.substr(path.find_last_of(SLASHES) + 1);
}

String GetScenePath(const String& name) {
    if (IsPath(name)) return name;
    return util::FileSystem::Instance().FindScene(name);
}

String GetSceneName(const String& path) {
    const util::FileSystem& files = util::FileSystem::Instance();
    const String name = GetFileName(path);
    const String autosave = util::RunSlot::Instance().GetAutosaveScene();
    if (name == autosave || name == ONEXIT_SCENE || name == WELCOME_SCENE) return String();
    return files.FindScene(name) == path ? name : path;
}

util::StringList ListNewestScenes(size_t most) {
    const util::FileSystem& files = util::FileSystem::Instance();
    util::StringList names = files.ListScenes("*" + SCENE_ENDING);
    if (names.size() <= most) return names;
    const auto age = [&](const String& name) {
        struct stat info = {};
        return stat(files.FindScene(name).c_str(), &info) == 0 ? -info.st_mtime : 0;
    };
    std::map<String, time_t> ages;
    for (const String& name : names) ages[name] = age(name);
    std::stable_sort(names.begin(), names.end(),
                     [&](const String& a, const String& b) { return ages[a] < ages[b]; });
    names.resize(most);
    std::sort(names.begin(), names.end());
    return names;
}

String GetPathToWrite(const String& name) {
    return IsPath(name) ? name : util::FileSystem::Instance().GetScenesDir() + name;
}

void WriteScene(const Scene& scene, const String& name) {
    constexpr double FOR_EVER = std::numeric_limits<double>::infinity();
    SceneWriter(scene, name).Continue(FOR_EVER);
}

String SaveScene(const Scene& scene, const String& name) {
    const String clean = CleanSceneName(name);
    if (clean.empty()) THROW(BadDataException, "Bad scene name");
    WriteScene(scene, clean);
    return clean;
}

}  // namespace app
