#include "core/Subsystem.h"

#include <SDL/SDL.h>

#include <iostream>

#include "core/Platform.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "input/Profiler.h"
#include "logging/Logger.h"
#include "logging/Sinks.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "util/Clock.h"
#include "util/Exception.h"
#include "util/FileSystem.h"

namespace core {

namespace {

constexpr int STDERR_LEVELS = logging::Warning | logging::CodeError | logging::DataError;
constexpr int STDOUT_LEVELS = logging::Info;
constexpr int FILE_LEVELS = STDERR_LEVELS | logging::Trace | logging::Info;

// Nothing ever counted objects made; the command stays for the scripts that name it.
int GetObjectTotal() {
    return 0;
}

// A value as a file would hold it: unlike what is printed, with quotes and all digits, so it reads back.
String GetCode(const script::ObjectPtr& value) {
    const script::ExpressionPtr source = value->ToExpression();
    if (!source) THROW(script::ScriptException, "There is no source text for " + value->ToCode());
    return source->ToCode();
}

}  // namespace

Subsystem::Subsystem()
    : m_clearColor(script::DeclareAttrib(*this, "clearColor", math::Vec4(0, 0, 0, 1))),
      m_minFPS(script::DeclareAttrib(*this, "minFPS", 2.0f)),
      m_maxFPS(script::DeclareAttrib(*this, "maxFPS", 60.0f)),
      m_vSync(script::DeclareAttribGetSet<bool>(
          *this, "vSync", false, [this] { return GetVSync(); },
          [this](const bool& enabled) { SetVSync(enabled); })),
      m_fpsStart(util::Clock::Now()) {
    SetReflectedName("System");
    AddLoggers();
    StartSDL();
    StartInput();
    SetIcon();
    AddCommands();
}

void Subsystem::SetCaption(const String& caption) {
    m_caption = caption;
    SetDocumentName("");
}

void Subsystem::SetDocumentName(const String& name) {
    m_title = name.empty() ? m_caption : name + " - " + m_caption;
    ShowTitle();
}

void Subsystem::ShowTitle() const {
    SDL_WM_SetCaption(m_title.c_str(), "Vexa");
}

void Subsystem::AddLoggers() {
    logging::Logger& logger = logging::Logger::Instance();
    logger.AddLogger(new logging::StreamLogger(STDERR_LEVELS, std::cerr));
    logger.AddLogger(new logging::StreamLogger(STDOUT_LEVELS, std::cout));
    const String path = util::FileSystem::Instance().GetWorkDir() + "Logfile.txt";
    logger.AddLogger(new logging::FileLogger(FILE_LEVELS, path, true));
}

void Subsystem::StartSDL() {
    Log(logging::Trace, "Init SDL...");
    SetStretching(m_stretches);
    if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_JOYSTICK | SDL_INIT_NOPARACHUTE) < 0) {
        THROW(std::runtime_error, String("Couldn't init SDL: ") + SDL_GetError());
    }
    if (!HasDisplay()) THROW(std::runtime_error, "Couldn't init SDL: No display found");
    CatchDroppedFiles();
    CatchTerminationSignals();  // after the library has set handlers of its own
}

// The profiler joins before the GUI adds its root, so that the GUI sees a key before it does.
void Subsystem::StartInput() {
    gui::Input::Instance().AddListener(this);
    gui::Input::Instance().AddListener(&util::Profiler::Instance());
}

void Subsystem::SetIcon() {
    const String path = util::FileSystem::Instance().GetInstallDir() + "Vexa.bmp";
    SDL_RWops* const file = SDL_RWFromFile(path.c_str(), "rb");
    SDL_Surface* const icon = file != nullptr ? SDL_LoadBMP_RW(file, 1) : nullptr;
    if (icon == nullptr) {
        Log(logging::Warning, "Couldn't load the window's icon, \"" + path + "\"");
        return;
    }
    SDL_WM_SetIcon(icon, nullptr);
    SDL_FreeSurface(icon);
}

void Subsystem::AddCommands() {
    AddCmd("exit", this, &Subsystem::Quit);
    AddCmd("time", &util::Clock::Now);
    AddCmd("objectCurrent", &util::Pointee::GetCount);
    AddCmd("objectHandleCurrent", [] { return static_cast<int>(util::Pointee::GetHandleCount()); });
    AddCmd("objectTotal", &GetObjectTotal);
    AddCmd1("code", &GetCode);
    AllowGuests({"time", "objectCurrent", "objectHandleCurrent", "objectTotal", "code"});
    AddCmd("recreateWindow", this, &Subsystem::RecreateWindow);

    script::DeclareAttribRemotePoker<bool>(*this, "resizable", &m_wantedParams.m_resizable);
    script::DeclareAttribRemotePoker<bool>(*this, "fullscreen", &m_wantedParams.m_fullscreen);
    script::DeclareAttribRemotePoker<math::Vec2i>(*this, "resolution", &m_wantedParams.m_resolution);
    script::DeclareAttribRemotePoker<int>(*this, "depth", &m_wantedParams.m_depth);
    script::DeclareAttribRemotePoker<int>(*this, "antiAlias", &m_wantedParams.m_antiAlias);
}

// The rest (resource manager, simulation, water, history, language, shaders, profiler) is abandoned.
Subsystem::~Subsystem() noexcept(false) {
    rendering::Renderer::Destroy();
    gui::Input::Destroy();
    gui::GUI::Destroy();
    rendering::TextureManager::Destroy();
    util::FileSystem::Destroy();
    script::Parser::Destroy();
    SDL_Quit();
}

}  // namespace core
