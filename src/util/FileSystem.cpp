#include "util/FileSystem.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "logging/Log.h"
#include "util/Exception.h"
#include "util/FileNames.h"
#include "util/FileWrapper.h"
#include "util/Version.h"

namespace util {

namespace fs = boost::filesystem;

namespace {

const String EXECUTABLE_NAME = "Vexa";  // in the runnable folder
const String COMMAND_NAME = "vexa";     // installed for all users
const String SHARED_DATA = "../share/vexa/";
constexpr size_t READ_SIZE = 16384;  // bytes
constexpr int MAX_LINKS = 16;        // a longer row of symbolic links is taken for a circle

// Empty when the system does not tell.
String GetExecutablePath() {
    char buffer[4096];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof(buffer));
    return length > 0 ? String(buffer, static_cast<size_t>(length)) : String();
}

bool IsFolder(const String& path) {
    boost::system::error_code error;
    return fs::is_directory(path, error);
}

// As the XDG base directories want it, a relative $XDG_DATA_HOME is ignored.
String GetUserDataDir() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && data[0] == '/') return String(data) + "/vexa/";
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') {
        const passwd* const user = getpwuid(getuid());
        home = user != nullptr ? user->pw_dir : "/tmp";
    }
    return String(home) + "/.local/share/vexa/";
}

// What a new working folder needs. A failure shows again, with its reason, when something is to be written.
void FillUserDir(const String& work, const String& install) {
    boost::system::error_code error;
    fs::create_directories(work + "Scenes", error);
    fs::create_directories(work + "Screenshots", error);
    if (!fs::exists(work + AUTOEXEC_FILE, error)) {
        fs::copy_file(install + AUTOEXEC_FILE, work + AUTOEXEC_FILE, error);
    }
}

// What a chain of symbolic links ends at, whether it exists or not.
String FollowLinks(const String& path) {
    fs::path target = path;
    boost::system::error_code error;
    for (int i = 0; i < MAX_LINKS && fs::is_symlink(fs::symlink_status(target, error)); ++i) {
        const fs::path next = fs::read_symlink(target, error);
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
}

// No two programs write the same one, and a killed one's is known by its number.
String MakeTemporaryName(const String& path) {
    return path + "." + std::to_string(getpid()) + TEMPORARY_ENDING;
}

// Before the first byte is written, or a private text would be open to all for a moment.
void CopyPermissions(const String& from, std::FILE* to) {
    struct stat status;
    if (stat(from.c_str(), &status) != 0) return;
    if (fchmod(fileno(to), status.st_mode & 07777) != 0) {
        Log(logging::Warning, "Could not keep the permissions of " + from);
    }
}

// A rename lasts only when its folder is on the disk. Some file systems refuse; then theirs is the say.
void SyncFolderOf(const String& path) {
    const size_t slash = path.rfind('/');
    const int folder = open(slash == String::npos ? "." : path.substr(0, slash + 1).c_str(), O_RDONLY);
    if (folder < 0) return;
    static_cast<void>(fsync(folder));
    close(folder);
}

// "\r\n" as "\n", and each line up to a NUL in it.
String ToPlainLines(const String& raw) {
    String text;
    text.reserve(raw.size());
    for (size_t begin = 0, end; begin < raw.size(); begin = end) {
        const size_t newline = raw.find('\n', begin);
        end = newline == String::npos ? raw.size() : newline + 1;
        const void* const nul = std::memchr(raw.data() + begin, '\0', end - begin);
        if (nul != nullptr) {
            text.append(raw.data() + begin, static_cast<const char*>(nul));
            continue;
        }
        text.append(raw, begin, end - begin);
        const size_t size = text.size();
        if (size >= 2 && text[size - 1] == '\n' && text[size - 2] == '\r') text.erase(size - 2, 1);
    }
    return text;
}

template <class Function>
auto Rethrowing(Function function) -> decltype(function()) {
    try {
        return function();
    } catch (const fs::filesystem_error& e) {
        THROW(std::runtime_error, e.what());
    }
}

}  // namespace

void FileSystem::FindWorkDir() {
    SetFoldersFor(GetExecutablePath());
    std::cout << "workdir = " << m_workDir << std::endl;
}

void FileSystem::SetFoldersFor(const String& executable) {
    SetWorkDir("");
    const size_t slash = executable.rfind('/');
    if (slash == String::npos) return;
    const String name = executable.substr(slash + 1);
    const String folder = executable.substr(0, slash + 1);
    const bool isInstalled = !IsFolder(folder + "Data") && IsFolder(folder + SHARED_DATA + "Data");
    if (name != EXECUTABLE_NAME && !(name == COMMAND_NAME && isInstalled)) return;
    m_installDir = isInstalled ? folder + SHARED_DATA : folder;
    const bool isOwn = !isInstalled && access(folder.c_str(), W_OK) == 0;
    m_workDir = isOwn ? folder : GetUserDataDir();
    if (!isOwn) FillUserDir(m_workDir, m_installDir);
}

String FileSystem::FindScene(const String& name) const {
    const bool onlyShipped = !Exists(GetScenesDir() + name) && Exists(GetShippedScenesDir() + name);
    return (onlyShipped ? GetShippedScenesDir() : GetScenesDir()) + name;
}

StringList FileSystem::ListScenes(const String& mask) const {
    StringList names = ListFiles(GetScenesDir(), mask);
    const StringList shipped = ListFiles(GetShippedScenesDir(), mask);
    names.insert(names.end(), shipped.begin(), shipped.end());
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

const char* FileSystem::Version() {
    return VERSION_TEXT;
}

String FileSystem::ReadFile(const String& path) const {
    FILEWrapper file(path, "r");
    String raw;
    char buffer[READ_SIZE];
    while (const size_t count = std::fread(buffer, 1, sizeof(buffer), file.Get())) {
        raw.append(buffer, count);
        if (raw.size() > MAX_FILE_SIZE) THROW(FileReadException, "File too large: \"" + path + "\"");
    }
    if (std::ferror(file.Get())) THROW(FileReadException, "Failed to read file \"" + path + "\"");
    return ToPlainLines(raw);
}

void FileSystem::WriteFileAtomically(const String& path, const String& text) const {
    const String target = FollowLinks(path);
    boost::system::error_code error;
    if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
        THROW(std::runtime_error, "Not a file: \"" + path + "\"");
    }
    const String temporary = MakeTemporaryName(target);
    std::remove(temporary.c_str());
    try {
        FILEWrapper file(temporary, "wbx");  // never through a link that lies there
        CopyPermissions(target, file.Get());
        file.Write(text.data(), text.size());
        file.Sync();
        file.Close();
        Rename(temporary, target);
        SyncFolderOf(target);
    } catch (...) {
        std::remove(temporary.c_str());
        throw;
    }
}

bool FileSystem::IsLeftOver(const String& name) {
    constexpr size_t MAX_DIGITS = 9;
    if (!boost::algorithm::ends_with(name, TEMPORARY_ENDING)) return false;
    const String stem = name.substr(0, name.size() - TEMPORARY_ENDING.size());
    const size_t dot = stem.rfind('.');
    const String number = dot == String::npos ? String() : stem.substr(dot + 1);
    const bool isNumber = !number.empty() && number.find_first_not_of("0123456789") == String::npos;
    if (!isNumber || number.size() > MAX_DIGITS) return false;
    return kill(std::stoi(number), 0) != 0 && errno == ESRCH;
}

bool FileSystem::KeepBadCopy(const String& path) const {
    const String copy = path + ".bad";
    boost::system::error_code error;
    const bool isText = fs::is_regular_file(path, error) && fs::file_size(path, error) <= MAX_FILE_SIZE;
    if (!isText && !error) error = make_error_code(boost::system::errc::not_supported);
    if (!error) fs::copy_file(path, copy, fs::copy_option::overwrite_if_exists, error);
    if (error) {
        Log(logging::Error, "Could not read " + path + ", nor copy it to " + copy + ": " + error.message());
        return false;
    }
    Log(logging::Error, "Could not read " + path + "; a copy is kept as " + copy);
    return true;
}

StringList FileSystem::ListFiles(const String& directory, const String& mask) const {
    StringList names;
    boost::system::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        boost::system::error_code statusError;
        if (!fs::is_regular_file(it->path(), statusError)) continue;
        const String name = it->path().filename().string();
        if (mask == "*" || WildcardMatch(name.c_str(), mask.c_str())) names.push_back(name);
    }
    return names;
}

void FileSystem::Rename(const String& from, const String& to) const {
    Rethrowing([&] { fs::rename(from, to); });
}

void FileSystem::Remove(const String& path) const {
    Rethrowing([&] { fs::remove(path); });
}

bool FileSystem::Exists(const String& path) const {
    boost::system::error_code error;
    return fs::exists(path, error);
}

bool FileSystem::IsSameFile(const String& a, const String& b) const {
    boost::system::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

void FileSystem::MakeDir(const String& path) const {
    Rethrowing([&] { fs::create_directories(path); });
}

bool WildcardMatch(const char* text, const char* mask) {
    if (*text == '\0' || *mask == '\0') return *text == *mask;
    if (*mask == '*') {
        return WildcardMatch(text + 1, mask) || WildcardMatch(text, mask + 1) ||
               WildcardMatch(text + 1, mask + 1);
    }
    return (*mask == '?' || *mask == *text) && WildcardMatch(text + 1, mask + 1);
}

}  // namespace util
