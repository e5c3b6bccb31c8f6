#include "app/drawing/SceneRenderer.h"

#include <cmath>

#include "app/drawing/Background.h"
#include "app/drawing/DebugViews.h"
#include "app/drawing/SelectionPainter.h"
#include "app/drawing/WaterPainter.h"
#include "app/entities/GeomEntity.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Input.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"
#include "rendering/TextureManager.h"
#include "util/Clock.h"
#include "util/ProfileTree.h"

namespace app {

using math::Vec2;
using math::Vec3;
using math::Vec4;
using rendering::Renderer;

namespace {

constexpr Vec4 WHITE{1, 1, 1, 1};
constexpr float PULSE_SPEED = 5;        // rad/s
constexpr float SELECTION_WIDTH = 7;    // of the line round what is selected, pixels at a scale of one
constexpr float SELECTION_GLOW = 0.3f;  // of the way to white that a selected shape's colour goes at most
constexpr float DESIGN_DPI = 86;        // of the screen that widths in centimetres were chosen for
constexpr float CONTACT_NORMAL = 20;    // GUI units

void BlendByAlpha() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

// What is selected goes up and down in brightness: between 0 and 1. In a stopped world it stays bright, for
// there the picture is drawn only when something changes.
float GetPulse() {
    if (!physics::Simulation::Instance().m_running->Get()) return 1;
    return 0.5f + 0.5f * static_cast<float>(std::sin(util::Clock::Now() * PULSE_SPEED));
}

// What takes a colour some way to white when it is multiplied with it. Never below 1, so that no colour gets
// darker; black, which cannot be brightened by a factor, stays black.
Vec3 GetGlow(const Vec3& color, float part) {
    const auto factor = [part](float c) { return c > 0 ? std::max(1.0f, (c + (1 - c) * part) / c) : 1; };
    return {factor(color.x), factor(color.y), factor(color.z)};
}

float GetGUIScale() {
    return gui::Input::Instance().GetSettings().m_scale;
}

const physics::ParticleList& GetParticles() {
    return physics::Simulation::Instance().GetParticles();
}

}  // namespace

SceneRenderer::SceneRenderer(const Scene& scene, const View& view, script::Reflected& owner)
    : m_scene(scene),
      m_view(view),
      m_settings(owner),
      m_background(new Background(view, m_settings.m_drawClouds)),
      m_waterPainter(new WaterPainter(m_settings.m_waterFanceyFactor)),
      m_selectionPainter(new SelectionPainter) {}

SceneRenderer::~SceneRenderer() = default;

void SceneRenderer::Update(float dt) {
    m_background->Update(dt);
}

void SceneRenderer::Draw(const std::function<void()>& drawOver) {
    if (HasWaterField()) m_waterPainter->DrawField(GetParticles(), GetWaterView());

    const rendering::ScopedAttribs attribs;
    const rendering::ScopedMatrix matrix;
    Renderer::Instance().SetColor(WHITE);
    {
        PROFILE_SECTION("Setup");
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_TEXTURE_2D);
        DrawFade();
        BlendByAlpha();
    }
    m_background->SetSize(m_view.GetSize().x, m_view.GetSize().y);
    m_background->Draw();
    if (!GetParticles().empty()) DrawWater();

    glLineWidth(m_settings.m_lineWidth->Get() * GetGUIScale());
    glPointSize(m_settings.m_pointSize->Get() * GetGUIScale());
    BlendByAlpha();
    Renderer::Instance().MultMatrix(m_view.GetWorldToGUI());
    DrawEntities();
    DrawSelection();
    DrawDebugViews();
    drawOver();
    rendering::ShapePainter::Instance().Flush();
    CaptureFade();
    glFlush();  // a driver that draws in software begins now, while what lies over the scene is still to come
}

// ---- water ----------------------------------------------------------------------------------------------

// In a frame buffer without alpha bits every pixel would pass the cut.
bool SceneRenderer::HasWaterField() const {
    return !GetParticles().empty() && !m_settings.m_simpleWater->Get() &&
           (rendering::HasTargets() || rendering::Context::HasAlpha());
}

WaterView SceneRenderer::GetWaterView() const {
    WaterView view;
    view.worldToGUI = m_view.GetWorldToGUI();
    view.box = m_view.GetViewBox();
    view.size = m_view.GetSize();
    view.guiScale = GetGUIScale();
    view.radius = physics::SPH::Instance().m_radius->Get();
    view.elongation = m_settings.m_waterElongation->Get();
    view.maxElongation = m_settings.m_waterMaxElongation->Get();
    view.cutoff = m_settings.m_metaCutoff->Get();
    view.color = m_settings.m_waterColor->Get();
    return view;
}

void SceneRenderer::DrawWater() {
    PROFILE_SECTION("Water");
    if (HasWaterField()) {
        m_waterPainter->DrawSurface(GetWaterView());
    } else {
        m_waterPainter->DrawDiscs(GetParticles(), GetWaterView());
    }
}

// ---- the scene -------------------------------------------------------------------------------------------

void SceneRenderer::DrawEntities() {
    PROFILE_SECTION("Entities");
    rendering::ShapeView view;
    view.box = m_view.GetViewBox();
    view.pixelSize = m_view.GetWorldPerGUI() / GetGUIScale();
    view.borderWidth = m_settings.m_borderWidth->Get() * m_view.GetCmToWorld() * GetLineGrowth();
    view.borders = m_settings.m_borders->Get();
    rendering::ShapePainter& painter = rendering::ShapePainter::Instance();
    painter.SetView(view);

    for (const EntityPtr& entity : m_scene.GetEntities()) {
        if (entity->GetBoundingBox().Overlaps(view.box)) DrawEntity(*entity);
    }
    painter.Flush();
    Renderer::Instance().SetColor(WHITE);
}

void SceneRenderer::DrawEntity(Entity& entity) {
    const bool isSelected = m_scene.GetSelection().Has(&entity);
    entity.SetTint(isSelected ? GetGlow(entity.GetColor(), GetPulse() * SELECTION_GLOW) : Vec3(1, 1, 1));
    entity.Draw();
    if (const auto* const shape = dynamic_cast<const FiniteGeomEntity*>(&entity)) {
        DrawDebugLayers(*shape->GetGeom(), m_settings);
    }
}

// Between the chosen colour and white: at one of them it shows on whatever colour is under it.
void SceneRenderer::DrawSelection() {
    const Vec3 chosen = m_settings.m_selectColor->Get();
    const Vec3 color = chosen * GetGlow(chosen, GetPulse());
    m_selectionPainter->Draw(m_scene.GetSelection(), m_view.GetViewBox(),
                             SELECTION_WIDTH * m_view.GetWorldPerGUI(), color);
}

// Lines in centimetres follow App.DPI. Where only the scale of the interface was raised for a fine screen,
// they grow with that.
float SceneRenderer::GetLineGrowth() const {
    return std::max(1.0f, GetGUIScale() * DESIGN_DPI / m_view.GetDPI());
}

void SceneRenderer::DrawDebugViews() {
    if (m_settings.m_drawBodyCenters->Get()) DrawBodyCenters(physics::Simulation::Instance().GetBodies());
    if (m_settings.m_drawParticleCenters->Get()) DrawParticleCenters(GetParticles());
    if (m_settings.m_drawCollisions->Get()) DrawContacts(CONTACT_NORMAL * m_view.GetWorldPerGUI());
}

// ---- the fading trail of former frames -------------------------------------------------------------------

void SceneRenderer::DrawFade() {
    const Vec3 color = m_settings.m_fadeColor->Get();
    if (color == Vec3(0, 0, 0)) return;
    // Before the first capture the texture is blank, which adds nothing.
    if (!m_fadeTexture || m_fadeGeneration != rendering::Context::GetGeneration()) return;
    const rendering::TexturePtr last = m_fadeTexture->Get();
    if (!last) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedTexture frame(last);
    const Vec2 shift = m_settings.m_fadeTranslate->Get(), scale = m_settings.m_fadeScale->Get(),
               middle = m_view.GetMiddle();
    glTranslatef(shift.x, shift.y, 0);
    glTranslatef(middle.x, middle.y, 0);
    glRotatef(m_settings.m_fadeRotate->Get(), 0, 0, 1);
    glScalef(scale.x, scale.y, 1);
    glTranslatef(-middle.x, -middle.y, 0);
    Renderer::Instance().SetColor({color.x, color.y, color.z, 1});
    DrawFrameQuad(*last, GetWholeFrame(*last), m_view.GetSize(), GetGUIScale());
    Renderer::Instance().SetColor(WHITE);
}

void SceneRenderer::CaptureFade() {
    if (m_settings.m_fadeColor->Get() == Vec3(0, 0, 0)) return;
    if (!m_fadeTexture) {
        m_fadeTexture = rendering::TextureManager::MakeForFrame(rendering::Texture::ImageType::Frame());
    }
    const rendering::TexturePtr texture = m_fadeTexture->Get();
    if (!texture) return;
    texture->Copy(static_cast<int>(texture->GetWidth()), static_cast<int>(texture->GetHeight()));
    m_fadeGeneration = rendering::Context::GetGeneration();
}

}  // namespace app
