#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/Language.h"
#include "app/entities/Entity.h"
#include "app/files/SceneFiles.h"
#include "app/files/SceneLoader.h"
#include "core/CommandLine.h"
#include "core/ComposeTable.h"
#include "core/DriverAhead.h"
#include "core/Platform.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "input/KeyBinder.h"
#include "logging/Logger.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "rendering/TextureManager.h"
#include "script/Parser.h"
#include "util/Exception.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"
#include "util/Guarded.h"
#include "util/RunSlot.h"

// The program from its start to its end. The order of the steps is the order in which they depend on each
// other; in particular the simulation comes before anything that makes a body, and the configuration before
// the window that it describes.
//
// The autosaved scene and configuration exist only while a run is in progress: whoever finds them at the
// start knows that the last run did not end by itself, and takes them. So they are deleted at one place only,
// the end of a clean run, and there only after what replaces them is on the disk.
namespace {

using AppPtr = util::SharedPtr<app::App>;

const String CREDIT = "the Vexa authors";
constexpr int BAD_USAGE = 2;        // exit status
constexpr int DESKTOP_MARGIN = 64;  // pixels that a first window leaves free in each direction

util::FileSystem& GetFiles() {
    return util::FileSystem::Instance();
}

// ---- start

// Before anything else exists: these runs end here.
core::CommandLine ReadCommandLine(const util::StringList& arguments) {
    try {
        const core::CommandLine line = core::ParseCommandLine(arguments);
        if (line.m_version) {
            std::cout << util::FileSystem::Version() << std::endl;
        } else if (line.m_help) {
            std::cout << core::COMMAND_LINE_HELP << std::flush;
        } else {
            return line;
        }
        std::exit(0);
    } catch (const std::invalid_argument& e) {
        std::cerr << "vexa: " << e.what() << "; vexa --help lists the options" << std::endl;
        std::exit(BAD_USAGE);
    }
}

// Single files may be missing, each of which is told; without all of them there would be nothing to read.
void RequireData() {
    const String folder = GetFiles().GetDataDir();
    if (GetFiles().Exists(folder)) return;
    THROW(FatalException,
          "The folder \"" + folder + "\" is missing: the program needs all that it came with");
}

// The variables that libraries look at, while nobody else does: from the driver's loading on another thread
// may.
void PrepareEnvironment() {
    core::SetStretching(false);
    core::ChooseComposeTable(GetFiles().GetDataDir() + "Compose");
}

void MakeSubsystem() {
    core::Subsystem::Create();
    core::Subsystem::Instance().SetCaption(util::FileSystem::Version() + String(" by ") + CREDIT);
}

// Each service is made by this first mention.
void MakeServices() {
    script::Parser::SetKeyBinderFactory([] { return script::ReflectedPtr(new script::KeyBinder); });
    script::Reflected::AddToRoot(&core::Subsystem::Instance());
    script::Reflected::AddToRoot(&core::ResourceManager::Instance());
    script::Reflected::AddToRoot(&physics::Simulation::Instance());
    script::Reflected::AddToRoot(&physics::SPH::Instance());
    script::Reflected::AddToRoot(&gui::GUI::Instance());
    gui::GUI::Instance().SetWindowHost(&core::Subsystem::Instance());
    gui::GUI::Instance().GetConsole()->GetHistory().SetFile(GetFiles().GetWorkDir() + CONSOLE_HISTORY_FILE);
}

AppPtr MakeApp() {
    const AppPtr application = new app::App;
    gui::GUI::Instance().GetRoot()->AddChild(application);
    script::Reflected::AddToRoot(application);  // scripts call it App, wherever it hangs on the screen
    return application;
}

void RenameOldScene(const String& name) {
    const String folder = GetFiles().GetScenesDir();
    const String newName = name.substr(0, name.size() - SCENE_ENDING.size()) + SCENE_ENDING;
    if (GetFiles().Exists(folder + newName)) {
        Log(logging::Warning, "Not renaming \"" + name + "\": \"" + newName + "\" exists");
        return;
    }
    try {
        GetFiles().Rename(folder + name, folder + newName);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Warning, "Couldn't rename \"" + name + "\": " + e.what());
    }
}

// A scene is called ".vxa", whatever it came as.
void RenameOldScenes() {
    const util::StringList names = GetFiles().ListFiles(GetFiles().GetScenesDir(), "*.cfg");
    if (names.empty()) return;
    Log(logging::Info, "Renaming old .cfg files to .vxa...");
    for (const String& name : names) RenameOldScene(name);
}

// ---- configuration

util::RunSlot& GetSlot() {
    return util::RunSlot::Instance();
}

bool Exists(const String& configuration) {
    return GetFiles().Exists(GetFiles().GetWorkDir() + configuration);
}

// What cannot be read, or not whole, is kept beside, for this run will write its own.
bool LoadConfiguration(const String& name) {
    script::Parser& parser = script::Parser::Instance();
    const bool read = parser.LoadConfig(name);
    if (!read || !parser.GetFailures().empty()) GetFiles().KeepBadCopy(GetFiles().GetWorkDir() + name);
    return read;
}

bool RecoverConfiguration() {
    const String name = GetSlot().GetAutosaveConfig();
    if (!Exists(name)) return false;
    Log(logging::Info, "Recovering " + name + " from previous crash");
    return LoadConfiguration(name);
}

// Letters are as large on every screen as on an ordinary one, where the platform tells what it has.
void FollowScreen() {
    constexpr float ORDINARY_DPI = 96, STEPS = 2, MAX_SCALE = 3;
    const float dpi = core::GetDisplayDPI();
    if (dpi <= 0) return;
    const float scale = std::clamp(std::round(dpi / ORDINARY_DPI * STEPS) / STEPS, 1.0f, MAX_SCALE);
    gui::GUI::Instance().SetScale(scale);
    if (scale > 1) script::Parser::Instance().Execute("App.DPI = " + std::to_string(dpi));
}

// Only a size that nobody has wished for.
void FitWindowToDesktop() {
    core::WindowParams params = core::Subsystem::Instance().GetWantedParams();
    if (params.m_resolution != core::WindowParams().m_resolution) return;
    const float scale = std::max(gui::GUI::Instance().GetScale(), 1.0f);
    params.m_resolution.x = static_cast<int>(std::lround(params.m_resolution.x * scale));
    params.m_resolution.y = static_cast<int>(std::lround(params.m_resolution.y * scale));
    const math::Vec2i desktop = core::GetDesktopSize();
    if (desktop.x > 0 && desktop.y > 0) {
        params.m_resolution.x = std::min(params.m_resolution.x, desktop.x - DESKTOP_MARGIN);
        params.m_resolution.y = std::min(params.m_resolution.y, desktop.y - DESKTOP_MARGIN);
    }
    core::Subsystem::Instance().SetParams(params);
}

void RunAutoexec() {
    const script::KeyBinder::Autoexec autoexec;
    script::Parser::Instance().LoadConfig(AUTOEXEC_FILE);
}

// The interface speaks the user's language from the first minute on; "autoexec.cfg" has the last word.
void FollowUserLocale() {
    const String language = app::Language::FindForLocale(app::Language::GetUserLocale());
    if (language.empty()) return;
    app::App::Instance().m_language->SetValue(script::ValueToObject(language));
}

void LoadConfigurations() {
    if (!Exists(AUTOSAVE_CONFIG_FILE) && !Exists(CONFIG_FILE)) {
        FollowUserLocale();
        FollowScreen();
    }
    script::Parser::Instance().LoadConfig(GetFiles().GetDataDir() + DEFAULTS_FILE);
    RunAutoexec();
    const bool recovered = RecoverConfiguration();
    if (!recovered && !Exists(CONFIG_FILE)) return FitWindowToDesktop();
    if (!recovered) LoadConfiguration(CONFIG_FILE);
    RunAutoexec();
}

// ---- scene

// A scene that a crash left gives way to one that was asked for, yet is not lost: the next autosave would
// overwrite it.
bool LoadAskedScene(app::App& application, const String& path) {
    if (path.empty()) return false;
    const String autosave = GetSlot().GetAutosaveScene();
    const String autosavePath = GetFiles().GetScenesDir() + autosave;
    if (GetFiles().IsSameFile(autosavePath, app::GetScenePath(path))) return false;  // it comes first anyway
    if (GetFiles().Exists(autosavePath)) util::RunSlot::KeepAsRecovered(autosave);
    Log(logging::Info, "Loading argument " + path);
    return app::SceneLoader::LoadAtStart(application.GetScene(), application.GetView(), path);
}

void LoadFirstScene(app::App& application, const String& asked) {
    const String lastName = application.GetGUISettings().m_sceneName->Get();
    GetSlot().KeepOrphans();
    if (LoadAskedScene(application, asked)) return;
    // An empty world would take the place of the last scene at the end of this run.
    for (const String& scene : {GetSlot().GetAutosaveScene(), ONEXIT_SCENE, WELCOME_SCENE}) {
        const String path = GetFiles().FindScene(scene);
        if (!GetFiles().Exists(path)) continue;
        if (!app::SceneLoader::LoadLast(application.GetScene(), application.GetView(), path)) continue;
        // What was read back is the scene that was open, and is saved under its name.
        if (scene != WELCOME_SCENE) application.GetScene().SetName(lastName);
        return;
    }
}

void TellNoScene(const String& path) {
    Log(logging::Warning, "Not a scene: " + path);
}

void OpenDroppedFile(app::App& application, const String& path) {
    if (!boost::algorithm::ends_with(path, SCENE_ENDING)) return TellNoScene(path);
    application.GetAppGUI()->LoadScene(path, false);
}

// ---- the user's files

// What is wrong with them becomes a notice.
class ScopedUserFiles {
  public:
    ScopedUserFiles() { gui::GUI::Instance().SetReadsUserFiles(true); }
    ~ScopedUserFiles() { gui::GUI::Instance().SetReadsUserFiles(false); }
    ScopedUserFiles(const ScopedUserFiles&) = delete;
    ScopedUserFiles& operator=(const ScopedUserFiles&) = delete;
};

void ReadSettings(const core::CommandLine& line) {
    const ScopedUserFiles reading;
    LoadConfigurations();
    for (const String& setting : line.m_settings) script::Parser::Instance().Execute(setting);
}

void ReadScene(app::App& application, const core::CommandLine& line) {
    const ScopedUserFiles reading;
    if (!line.m_noScene.empty()) TellNoScene(line.m_noScene);
    LoadFirstScene(application, line.m_scene);
}

// ---- end

// Each step stands alone: a scene that cannot be saved is no reason to lose the settings. What could not be
// saved leaves its autosave, so the next start finds it.
void Save(app::App& application) {
    Log(logging::Trace, "Subsystem::Run returned, saving config...");
    util::Guarded([&] { application.OnExit(); }, "Failed saving the scene: ", logging::Error);
    if (!script::Parser::Instance().SaveRootCode(CONFIG_FILE)) return;
    const String autosave = GetFiles().GetWorkDir() + GetSlot().GetAutosaveConfig();
    util::Guarded([&] { GetFiles().Remove(autosave); },
                  "Failed removing the autosaved settings: ", logging::Error);
}

// No static destructor runs, and the services that are left are simply abandoned.
[[noreturn]] void End() {
    Log(logging::Trace, "Destroying subsystem");
    script::Parser::Destroy();
    core::Subsystem::Destroy();
    Log(logging::Trace, "Returning 0 from main");
    logging::Logger::Destroy();
    _exit(0);
}

[[noreturn]] void RunProgram(const util::StringList& arguments) {
    const core::CommandLine line = ReadCommandLine(arguments);
    PrepareEnvironment();
    core::LoadDriverAhead();
    MakeSubsystem();
    RequireData();
    GetSlot().Take();
    util::RunSlot::SweepTemporaries();
    MakeServices();
    const AppPtr application = MakeApp();
    RenameOldScenes();
    Log(logging::Trace, "Application created");
    ReadSettings(line);
    core::Subsystem::Instance().RecreateWindow();
    application->CreateGUI();
    rendering::TextureManager::Instance().ReadAhead();  // while the scene is read
    ReadScene(*application, line);
    application->GetView().Arrive();  // the first picture is not one on the way
    core::Subsystem::Instance().SetOnFileDropped(
        [&application](const String& path) { OpenDroppedFile(*application, path); });
    Log(logging::Info, "Running program...");
    core::Subsystem::Instance().Run();
    Save(*application);
    End();
}

}  // namespace

int main(int argc, char** argv) {
    GetFiles().FindWorkDir();
    try {
        RunProgram(util::StringList(argv + std::min(argc, 1), argv + argc));
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        if (core::ShowMsg("Exception caught", e.what())) throw;
    } catch (...) {
        LogUnknownException(WHERE);
        if (core::ShowMsg("Unknown exception caught", "Badness")) throw;
    }
    _exit(1);
}
