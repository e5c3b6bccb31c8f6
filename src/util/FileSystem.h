#pragma once

#include <vector>

#include "util/Singleton.h"
#include "util/String.h"

namespace util {

using StringList = std::vector<String>;

// Knows the working directory and names the folders of the installation. Paths use forward slashes and are
// built by concatenation. All failures are std::runtime_error through THROW.
class FileSystem : public Pointee, public Singleton<FileSystem> {
  public:
    // Takes the executable's folder when the executable is called "Vexa", otherwise leaves the paths
    // relative to the current directory. Prints the result on standard output. Never throws.
    void FindWorkDir();

    // Empty, or ending in "/", so that names can be appended.
    const String& GetWorkDir() const { return m_workDir; }
    void SetWorkDir(const String& directory) { m_workDir = directory; }

    String GetScenesDir() const { return m_workDir + "Scenes/"; }
    String GetDataDir() const { return m_workDir + "Data/"; }
    String GetShadersDir() const { return GetDataDir() + "Shaders/"; }
    String GetTexturesDir() const { return GetDataDir() + "Textures/"; }
    String GetFontsDir() const { return GetDataDir() + "Fonts/"; }
    String GetLanguageDir() const { return GetDataDir() + "Language/"; }
    String GetScreenshotsDir() const { return m_workDir + "Screenshots/"; }
    static const char* Version();

    // The whole text, with "\r\n" as "\n". A line ends at an embedded NUL.
    String ReadFile(const String& path) const;

    // The one routine for files that replace others: writes `path`.tmp, flushes it to the disk and renames
    // it over the target, so that a crash or a full disk never costs the old contents.
    void WriteFileAtomically(const String& path, const String& text) const;

    // Copies `path` to `path`.bad before something overwrites what could not be read, and says so at level
    // Error. Never throws; false when the copy could not be made.
    bool KeepBadCopy(const String& path) const;

    // Plain names in `directory` that match `mask` ("*" takes all), in the order of the disk; empty when
    // the folder does not exist.
    StringList ListFiles(const String& directory, const String& mask) const;
    StringList ListDirs(const String& directory) const;

    void Rename(const String& from, const String& to) const;  // replaces `to`
    void Remove(const String& path) const;                    // a missing file is no failure
    bool Exists(const String& path) const;
    void MakeDir(const String& path) const;  // with its parents; an existing one is no failure

  private:
    String m_workDir;
};

// "?" stands for one character, "*" for one or more: a text that ends before the mask does not match, even
// if only a star is left of it.
bool WildcardMatch(const char* text, const char* mask);

}  // namespace util
