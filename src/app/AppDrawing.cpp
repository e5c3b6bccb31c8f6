#include <cmath>

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/drawing/Background.h"
#include "app/drawing/DebugViews.h"
#include "app/drawing/WaterPainter.h"
#include "app/entities/CircleEntity.h"
#include "app/tools/Tool.h"
#include "input/Input.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"
#include "util/Clock.h"
#include "util/ProfileTree.h"

// The frame of the world view. The order of the passes is the design: the frame buffer is scratch paper for
// the water's field before the picture proper begins.

namespace app {

using math::Vec2;
using math::Vec3;
using math::Vec4;
using rendering::Renderer;

namespace {

constexpr Vec4 WHITE{1, 1, 1, 1};
constexpr float PULSE_SPEED = 5;        // rad/s
constexpr float PULSE_STRENGTH = 0.5f;  // of the brightness
constexpr float CONTACT_NORMAL = 20;    // GUI units

void BlendByAlpha() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

// The colour of selected shapes goes up and down.
float GetPulse() {
    return 1 + static_cast<float>(std::sin(util::Clock::Now() * PULSE_SPEED)) * PULSE_STRENGTH;
}

float GetGUIScale() {
    return gui::Input::Instance().GetSettings().m_scale;
}

const physics::ParticleList& GetParticles() {
    return physics::Simulation::Instance().GetParticles();
}

}  // namespace

void App::MakeDrawingResources() {
    if (m_background) return;
    m_waterPainter = new WaterPainter;
    m_background = new Background;
    AddReflected(m_background);
}

void App::DrawComp() {
    PROFILE_SECTION("App::DrawComp");
    MakeDrawingResources();
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
    m_background->SetSize(GetSize().x, GetSize().y);
    m_background->Draw();
    if (!GetParticles().empty()) DrawWater();

    glLineWidth(m_lineWidth->Get());
    glPointSize(m_pointSize->Get());
    BlendByAlpha();
    Renderer::Instance().MultMatrix(m_worldToGUI);
    DrawEntities();
    DrawDebugViews();
    if (m_appGUI) m_appGUI->GetTool().Draw();
    rendering::ShapePainter::Instance().Flush();
    CaptureFade();
}

// ---- water
// -------------------------------------------------------------------------------------------------

// Without alpha bits in the frame buffer every pixel would pass the cut.
bool App::HasWaterField() const {
    return !GetParticles().empty() && !m_simpleWater->Get() && rendering::Context::HasAlpha();
}

WaterView App::GetWaterView() const {
    WaterView view;
    view.worldToGUI = m_worldToGUI;
    view.box = GetViewBox();
    view.size = GetSize();
    view.guiScale = GetGUIScale();
    view.radius = physics::SPH::Instance().m_radius->Get();
    view.elongation = m_waterElongation->Get();
    view.maxElongation = m_waterMaxElongation->Get();
    view.cutoff = m_metaCutoff->Get();
    view.color = m_waterColor->Get();
    return view;
}

void App::DrawWater() {
    PROFILE_SECTION("Water");
    if (HasWaterField()) {
        m_waterPainter->DrawSurface(GetWaterView());
    } else {
        m_waterPainter->DrawDiscs(GetParticles(), GetWaterView());
    }
}

// ---- the scene -------------------------------------------------------------------------------------------

void App::DrawEntities() {
    PROFILE_SECTION("Entities");
    rendering::ShapeView view;
    view.box = GetViewBox();
    view.pixelSize = GetWorldPerGUI() / GetGUIScale();
    view.borderWidth = m_borderWidth->Get() * GetCmToWorld();
    view.borders = m_borders->Get();
    rendering::ShapePainter& painter = rendering::ShapePainter::Instance();
    painter.SetView(view);

    const float pulse = GetPulse();
    const Vec3 selected = m_selectColor->Get();
    for (const EntityPtr& entity : m_entities) {
        if (!entity->GetBoundingBox().Overlaps(view.box)) continue;
        const bool isSelected = m_selection.Has(entity);
        const float tint = isSelected ? pulse : 1;
        entity->SetTint({tint, tint, tint});
        Renderer::Instance().SetColor(isSelected ? Vec4(selected.x, selected.y, selected.z, 1) : WHITE);
        // Waiting circles lie below whatever comes next.
        if (dynamic_cast<const CircleEntity*>(entity.Get()) == nullptr) painter.Flush();
        entity->Draw();
    }
    painter.Flush();
    Renderer::Instance().SetColor(WHITE);
}

void App::DrawDebugViews() {
    if (m_drawBodyCenters->Get()) DrawBodyCenters(physics::Simulation::Instance().GetBodies());
    if (m_drawParticleCenters->Get()) DrawParticleCenters(GetParticles());
    if (m_drawCollisions->Get()) DrawContacts(CONTACT_NORMAL * GetWorldPerGUI());
}

// ---- the fading trail of former frames -------------------------------------------------------------------

void App::DrawFade() {
    const Vec3 color = m_fadeColor->Get();
    if (color == Vec3(0, 0, 0)) return;
    // Before the first capture the texture is blank, which adds nothing.
    if (!m_fadeTexture || m_fadeGeneration != rendering::Context::GetGeneration()) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    const rendering::ScopedMatrix matrix;
    const rendering::ScopedTexture frame(m_fadeTexture->Get());
    const Vec2 shift = m_fadeTranslate->Get(), scale = m_fadeScale->Get(), middle = GetMiddle();
    glTranslatef(shift.x, shift.y, 0);
    glTranslatef(middle.x, middle.y, 0);
    glRotatef(m_fadeRotate->Get(), 0, 0, 1);
    glScalef(scale.x, scale.y, 1);
    glTranslatef(-middle.x, -middle.y, 0);
    Renderer::Instance().SetColor({color.x, color.y, color.z, 1});
    DrawFrameQuad(GetSize(), GetGUIScale());
    Renderer::Instance().SetColor(WHITE);
}

void App::CaptureFade() {
    if (m_fadeColor->Get() == Vec3(0, 0, 0)) return;
    if (!m_fadeTexture) m_fadeTexture = MakeFrameTexture();
    const rendering::TexturePtr texture = m_fadeTexture->Get();
    if (!texture) return;
    texture->Copy(static_cast<int>(texture->GetWidth()), static_cast<int>(texture->GetHeight()));
    m_fadeGeneration = rendering::Context::GetGeneration();
}

}  // namespace app
