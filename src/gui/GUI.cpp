#include "gui/GUI.h"

#include <algorithm>

#include "gui/LookAndFeel.h"
#include "gui/Root.h"
#include "gui/TextFormat.h"
#include "gui/WidgetList.h"
#include "input/Input.h"
#include "logging/Logger.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "script/Conversions.h"
#include "util/ProfileTree.h"

namespace gui {
namespace {

using math::Vec2;
using rendering::Renderer;

constexpr float MIN_SCALE = 0.25f;
constexpr float MAX_SCALE = 32;
constexpr Vec2 CURSOR_SIZE(16, 32);  // GUI units
constexpr int SINK_LEVELS = logging::Error | logging::Warning | logging::Info;

// The projection for the length of a scope: GUI units, the origin at the top left.
class ScopedProjection {
  public:
    explicit ScopedProjection(Vec2 size) {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glLoadIdentity();
        glOrtho(0, size.x, size.y, 0, -1, 1);
        glMatrixMode(GL_MODELVIEW);
    }
    ~ScopedProjection() {
        glMatrixMode(GL_PROJECTION);
        glPopMatrix();
        glMatrixMode(GL_MODELVIEW);
    }
    ScopedProjection(const ScopedProjection&) = delete;
    ScopedProjection& operator=(const ScopedProjection&) = delete;
};

}  // namespace

GUI::GUI()
    : Reflected("GUI"),
      m_clickTolerance(script::DeclareAttrib(*this, "clickTolerance", 3.5f)),
      m_clickTimeTolerance(script::DeclareAttrib(*this, "clickTimeTolerance", 0.4f)),
      m_scale(script::DeclareAttrib(*this, "scale", 1.0f)),
      m_opaqueness(script::DeclareAttrib(*this, "opaqueness", 0.9f)) {
    AddCmd("widgets", [this] { return ListWidgets(*m_root, GetScale()); });
    AddCmd("focused", [this] { return DescribeFocus(GetScale()); });
    AddCmd1("press", [this](const String& key) { PressWidget(*m_root, key); });
    AddChildren();
    const util::CallbackPtr push = new util::Callback([this] { PushSettings(); }, this);
    m_clickTolerance->AddOnChange(push);
    m_clickTimeTolerance->AddOnChange(push);
    m_scale->AddOnChange(new util::Callback([this] { OnScaleChange(); }, this));
    PushSettings();
    Input::Instance().GetSettings().m_isCovered = [](Vec2 place) {
        return IsCreated() && Instance().m_root->FindAt(place) != nullptr;
    };
    ResizeRoot();
    LoadCursor();
}

void GUI::AddChildren() {
    m_root = new Root;
    m_console = new Console;
    m_notices = new Notices;
    m_root->AddChild(m_console);
    m_root->AddChild(m_notices);
    AddReflected(m_console);  // scripts call it GUI.Console
    Input::Instance().AddListener(m_root);
    InstallLogSink();
}

// Lives on in the logger after the GUI has gone.
void GUI::InstallLogSink() {
    const auto forward = [](const String& line) {
        if (IsCreated()) Instance().TakeLogLine(line);
    };
    for (const String& line : logging::Logger::Instance().TakeEarlyLines()) m_console->AddLogLine(line);
    logging::Logger::Instance().AddLogger(new logging::FunctionLogger(SINK_LEVELS, forward));
}

void GUI::TakeLogLine(const String& line) {
    m_console->AddLogLine(line);
    if (m_hasDrawn && !m_console->IsOpen()) m_notices->Add(line);
    if (!m_hasDrawn && m_readsUserFiles) m_earlyNotices.push_back(line);
}

// Their time begins when they can be seen.
void GUI::ShowEarlyNotices() {
    for (const String& line : m_earlyNotices) m_notices->Add(line);
    m_earlyNotices.clear();
}

void GUI::LoadCursor() {
    const auto load = [this]() {
        rendering::Texture* const texture =
            rendering::TextureFromPath("gui/mouse", rendering::Texture::ImageType::Icon());
        m_cursorLoaded = texture != nullptr;
        return texture;
    };
    m_cursor = rendering::TextureManager::Make(load);
}

bool GUI::HasCursor() {
    m_cursor->Get();
    return m_cursorLoaded;
}

// ---- size --------------------------------------------------------------------------------------------

void GUI::Resize(int width, int height) {
    m_windowSize = {width, height};
    ResizeRoot();
}

void GUI::ResizeRoot() {
    const Vec2 size = GetSize() - (m_root->GetOuterSize() - m_root->GetSize());
    m_root->SetSize(size.x, size.y);
}

void GUI::SetScale(float scale) {
    m_scale->SetValue(script::ValueToObject(scale));
}

void GUI::OnScaleChange() {
    const float scale = GetScale();
    if (!(scale >= MIN_SCALE && scale <= MAX_SCALE)) {
        SetScale(scale > MAX_SCALE ? MAX_SCALE : MIN_SCALE);  // which comes here again
        return;
    }
    PushSettings();
    ResizeRoot();
}

void GUI::PushSettings() {
    InputSettings& settings = Input::Instance().GetSettings();
    settings.m_scale = GetScale();
    Font::SetPixelsPerUnit(GetScale());
    settings.m_clickTolerance = m_clickTolerance->Get();
    settings.m_clickTimeTolerance = m_clickTimeTolerance->Get();
}

Vec2 GUI::GetSize() const {
    return ToGUI({static_cast<float>(m_windowSize.x), static_cast<float>(m_windowSize.y)});
}

// ---- the frame ---------------------------------------------------------------------------------------

void GUI::Update(float dt) {
    const ComponentPtr root = m_root;
    root->Update(dt);
}

void GUI::Draw() {
    PROFILE_SECTION("GUI::Draw");
    if (!rendering::Context::Exists()) return;
    const rendering::ScopedAttribs attribs;
    const ScopedProjection projection(GetSize());
    const rendering::ScopedMatrix matrix;
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    Renderer::Instance().SetColor({1, 1, 1, m_opaqueness->Get()});
    if (!m_hasDrawn) ShowEarlyNotices();
    m_hasDrawn = true;
    DrawTree();
    DrawCursor();
    DrawProfile();
}

void GUI::DrawTree() {
    PROFILE_SECTION("GUI");
    const rendering::ScopedAttribs attribs;
    const rendering::ScopedMatrix matrix;
    m_root->Draw();
}

void GUI::DrawCursor() {
    PROFILE_SECTION("Drawing cursor");
    if (!HasCursor()) return;
    const rendering::ScopedTexture texture(m_cursor->Get());
    const Vec2 tip = Input::Instance().GetMousePosition();
    Renderer::Instance().DrawQuad(tip, tip + CURSOR_SIZE, {0, 1}, {1, 0});
}

void GUI::DrawProfile() {
    PROFILE_SECTION("Profiler output");
    const util::ProfileTree& profile = util::ProfileTree::Get();
    if (profile.IsEnabled()) DrawString(LookAndFeel::Get().GetTextFormat(), 0, 0, profile.GetReport());
}

}  // namespace gui
