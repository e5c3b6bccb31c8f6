#include "util/FileSystem.h"

#include <unistd.h>

#include <boost/filesystem.hpp>
#include <iostream>

#include "logging/Log.h"
#include "util/Exception.h"
#include "util/FileWrapper.h"
#include "util/Version.h"

namespace util {

namespace fs = boost::filesystem;

namespace {

const String EXECUTABLE_NAME = "Vexa";

// Empty when the system does not tell.
String GetExecutablePath() {
    char buffer[4096];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof(buffer));
    return length > 0 ? String(buffer, static_cast<size_t>(length)) : String();
}

template <class Function>
auto Rethrowing(Function function) -> decltype(function()) {
    try {
        return function();
    } catch (const fs::filesystem_error& e) {
        THROW(std::runtime_error, e.what());
    }
}

StringList ListEntries(const String& directory, bool wantDirectories, const String& mask) {
    StringList names;
    boost::system::error_code error;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        boost::system::error_code statusError;
        if (fs::is_directory(it->path(), statusError) != wantDirectories) continue;
        const String name = it->path().filename().string();
        if (mask == "*" || WildcardMatch(name.c_str(), mask.c_str())) names.push_back(name);
    }
    return names;
}

}  // namespace

void FileSystem::FindWorkDir() {
    const String path = GetExecutablePath();
    const size_t slash = path.rfind('/');
    const bool isVexa = slash != String::npos && path.substr(slash + 1) == EXECUTABLE_NAME;
    m_workDir = isVexa ? path.substr(0, slash + 1) : String();
    std::cout << "workdir = " << m_workDir << std::endl;
}

const char* FileSystem::Version() {
    return VERSION_TEXT;
}

String FileSystem::ReadFile(const String& path) const {
    FILEWrapper file(path, "r");
    String text;
    char buffer[1024];
    while (std::fgets(buffer, sizeof(buffer), file.Get()) != nullptr) {
        text += buffer;
        const size_t size = text.size();
        if (size >= 2 && text[size - 1] == '\n' && text[size - 2] == '\r') text.erase(size - 2, 1);
    }
    if (std::ferror(file.Get())) THROW(FileReadException, "Failed to read file \"" + path + "\"");
    return text;
}

void FileSystem::WriteFileAtomically(const String& path, const String& text) const {
    const String temporary = path + ".tmp";
    try {
        FILEWrapper file(temporary, "wb");
        file.Write(text.data(), text.size());
        file.Sync();
        file.Close();
        Rename(temporary, path);
    } catch (...) {
        std::remove(temporary.c_str());
        throw;
    }
}

bool FileSystem::KeepBadCopy(const String& path) const {
    const String copy = path + ".bad";
    boost::system::error_code error;
    fs::copy_file(path, copy, fs::copy_option::overwrite_if_exists, error);
    if (error) {
        Log(logging::Error, "Could not read " + path + ", nor copy it to " + copy + ": " + error.message());
        return false;
    }
    Log(logging::Error, "Could not read " + path + "; a copy is kept as " + copy);
    return true;
}

StringList FileSystem::ListFiles(const String& directory, const String& mask) const {
    return ListEntries(directory, false, mask);
}

StringList FileSystem::ListDirs(const String& directory) const {
    return ListEntries(directory, true, "*");
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
