#pragma once

#include <vector>

#include "util/Singleton.h"
#include "util/String.h"

namespace util {

using StringList = std::vector<String>;

// Names the folders that the program reads and writes. Two roots: the working folder is the user's, with
// scenes, settings, autosaves, screenshots and the log; the installation holds what ships and is only read.
// In the runnable folder that is unpacked somewhere both are the same; a program installed for all users
// keeps its shipped files in "share/vexa" and the user's in "$XDG_DATA_HOME/vexa".
//
// Paths use forward slashes and are built by concatenation. All failures are std::runtime_error through
// THROW.
class FileSystem : public Pointee, public Singleton<FileSystem> {
  public:
    // Finds both roots from the executable's path: its own folder while that holds "Data/" and can be
    // written; otherwise the user's data folder, which is made on first use with a copy of the shipped
    // autoexec.cfg. An executable of another name leaves all paths relative to the current folder. Prints
    // "workdir = " and the result on standard output. Never throws.
    void FindWorkDir();
    // The same for an executable at that path, and without printing.
    void SetFoldersFor(const String& executable);

    // Empty, or ending in "/", so that names can be appended.
    const String& GetWorkDir() const { return m_workDir; }
    const String& GetInstallDir() const { return m_installDir; }
    // One folder for both.
    void SetWorkDir(const String& directory) { m_workDir = m_installDir = directory; }

    String GetScenesDir() const { return m_workDir + "Scenes/"; }  // the user's
    String GetShippedScenesDir() const { return m_installDir + "Scenes/"; }
    String GetDataDir() const { return m_installDir + "Data/"; }
    String GetShadersDir() const { return GetDataDir() + "Shaders/"; }
    String GetTexturesDir() const { return GetDataDir() + "Textures/"; }
    String GetFontsDir() const { return GetDataDir() + "Fonts/"; }
    String GetLanguageDir() const { return GetDataDir() + "Language/"; }
    String GetScreenshotsDir() const { return m_workDir + "Screenshots/"; }

    // The path of a file of Scenes/ for reading: the user's own, or else the shipped one of that name. Where
    // there is neither, the user's.
    String FindScene(const String& name) const;
    // The names of all that lie in either folder of scenes and match `mask`, each once, sorted.
    StringList ListScenes(const String& mask) const;

    static constexpr size_t MAX_FILE_SIZE = 32u << 20;  // bytes of a text; a great scene has two

    static const char* Version();

    // The whole text, with "\r\n" as "\n". A line ends at an embedded NUL. Throws also for more than
    // MAX_FILE_SIZE: such a file is no text of this program.
    String ReadFile(const String& path) const;

    // The one routine for files that replace others: writes a temporary file beside the target, flushes it to
    // the disk and renames it over the target, so that a crash or a full disk never costs the old contents,
    // and the last of two programs that write at once wins whole. A link stays a link and its target is
    // replaced; permissions stay as they were. What is no file, such as a device, is left alone.
    void WriteFileAtomically(const String& path, const String& text) const;
    // Whether a file of that name is a temporary one whose program has ended without renaming it.
    static bool IsLeftOver(const String& name);

    // Copies `path` to `path`.bad before something overwrites what could not be read, and says so at level
    // Error. Never throws; false when the copy could not be made, or `path` is too large to be a text of this
    // program.
    bool KeepBadCopy(const String& path) const;

    // Plain names of the files in `directory` that match `mask` ("*" takes all), in the order of the disk;
    // empty when the folder does not exist. Folders, pipes and links to nothing are no files.
    StringList ListFiles(const String& directory, const String& mask) const;

    void Rename(const String& from, const String& to) const;  // replaces `to`
    void Remove(const String& path) const;                    // a missing file is no failure
    bool Exists(const String& path) const;
    bool IsSameFile(const String& a, const String& b) const;  // by whatever way; false where one is missing
    void MakeDir(const String& path) const;  // with its parents; an existing one is no failure

  private:
    String m_workDir;
    String m_installDir;
};

// "?" stands for one character, "*" for one or more: a text that ends before the mask does not match, even
// if only a star is left of it.
bool WildcardMatch(const char* text, const char* mask);

}  // namespace util
