#include <algorithm>
#include <cmath>
#include <cstdio>

#include "app/App.h"
#include "app/entities/Entity.h"
#include "input/Input.h"
#include "input/Key.h"
#include "logging/Log.h"
#include "util/Assert.h"

// The view on the world: where the user looks, and how that moves.
//
// The matrix W = T(middle) S(s, -s) T(-p) maps the world point p to the middle of the component, with s GUI
// units to the metre and y turned over.
namespace app {

namespace {

constexpr double VIEW_TIME = 0.1;     // seconds that the view takes to glide to its target
constexpr float KEY_PAN_SPEED = 400;  // GUI units per second
constexpr float SCENE_MARGIN = 1.1f;  // of the scene's extent, at ZoomToScene
constexpr float CM_PER_INCH = 2.54f;

using Matrix = math::TMatrix3<float>;

Matrix MakeView(math::Vec2 middle, float scale, math::Vec2 world) {
    return Matrix::Translation(middle.x, middle.y) * Matrix::Scale(scale, -scale) *
           Matrix::Translation(-world.x, -world.y);
}

bool IsUsable(const Matrix& matrix) {
    for (const auto& row : matrix.m) {
        for (const float value : row) {
            if (!std::isfinite(value)) return false;
        }
    }
    return matrix.m[0][0] != 0;
}

String ToString(math::Vec2 v) {
    char text[64];
    std::snprintf(text, sizeof(text), "%g %g", static_cast<double>(v.x), static_cast<double>(v.y));
    return text;
}

}  // namespace

// A view that nobody has set yet would show the world upside down.
void App::UpdateView() {
    if (m_view.GetTarget() == Matrix()) SetDefaultView(false);
    m_view.Update();
    m_worldToGUI = m_view.Get();
}

math::Vec2 App::GUIToWorld(const math::Vec2& gui) const {
    const math::Vec2 ret = math::Inverted(m_worldToGUI)(gui);
    CODE_ASSERTION(ToString(ret) != "");
    return ret;
}

void App::SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate) {
    if (!IsUsable(matrix)) {
        Log(logging::Warning, "Bad arg to SetWorldToGUI");
        return;
    }
    if (animate) {
        m_view.Set(matrix, VIEW_TIME);
    } else {
        m_view.Jump(matrix);
        m_worldToGUI = matrix;
    }
}

void App::SetZoom(float scale) {
    const Matrix& target = GetTargetWorldToGUI();
    if (target.m[0][0] == scale) return;
    const math::Vec2 middle = GetMiddle();
    SetWorldToGUI(MakeView(middle, scale, math::Inverted(target)(middle)));
}

void App::ZoomAbout(math::Vec2 gui, float factor) {
    const Matrix& target = GetTargetWorldToGUI();
    const float scale = std::clamp(target.m[0][0] * factor, GetMinZoom(), GetMaxZoom());
    SetWorldToGUI(MakeView(gui, scale, math::Inverted(target)(gui)));
}

void App::Pan(float x, float y, bool animate) {
    SetWorldToGUI(Matrix::Translation(x, y) * GetTargetWorldToGUI(), animate);
}

void App::SetDefaultView(bool animate) {
    SetWorldToGUI(MakeView(GetMiddle(), GetDefaultZoom(), {}), animate);
}

void App::ZoomToScene() {
    math::BoundingBox2f bbSinAqua;  // of the entities; water does not count
    for (const EntityPtr& entity : m_entities) {
        const math::BoundingBox2f box = entity->GetBoundingBox();
        if (box.IsFinite()) bbSinAqua.Extend(box);
    }
    const math::Vec2 size = GetSize();
    // Planes alone have no extent to fit, and without a size there is nothing to fit it into.
    if (!bbSinAqua.IsFinite() || !(size.x > 0) || !(size.y > 0)) return SetDefaultView(true);
    CODE_ASSERTION(bbSinAqua.IsFinite());
    const math::Vec2 extent = bbSinAqua.GetSize();
    const float worldPerGUI = SCENE_MARGIN * std::max(extent.x / size.x, extent.y / size.y);
    const float scale = std::clamp(1 / worldPerGUI, GetMinZoom(), GetMaxZoom());
    SetWorldToGUI(MakeView(GetMiddle(), scale, bbSinAqua.GetCenter()));
}

math::Vec2 App::GetMousePos() const {
    return GUIToWorld(gui::Input::Instance().GetMousePosition());
}

math::BoundingBox2f App::GetViewBox() const {
    math::BoundingBox2f box;
    box.Extend(GUIToWorld({0, 0}));
    box.Extend(GUIToWorld(GetSize()));
    return box;
}

float App::GetWorldPerGUI() const {
    return math::Inverted(m_worldToGUI).m[0][0];
}

// An inch holds DPI pixels, and a GUI unit holds `scale` of them.
float App::GetCmToWorld() const {
    const float scale = gui::Input::Instance().GetSettings().m_scale;
    return GetWorldPerGUI() / scale * m_DPI->Get() / CM_PER_INCH;
}

void App::PanByKeys(float dt) {
    const auto down = [this](int key) { return IsKeyDownHere(key) ? 1.0f : 0.0f; };
    const float x = down(gui::Key::Right) - down(gui::Key::Left);
    const float y = down(gui::Key::Down) - down(gui::Key::Up);
    if (x != 0 || y != 0) Pan(x * dt * -KEY_PAN_SPEED, y * dt * -KEY_PAN_SPEED);
}

void App::KeepZoomInBounds() {
    if (GetZoom() < GetMinZoom()) {
        SetZoom(GetMinZoom());
    } else if (GetZoom() > GetMaxZoom()) {
        SetZoom(GetMaxZoom());
    }
}

// At once and from the target: a zoom under way ends with it, and the entity stays in the middle.
void App::FollowTrackedEntity() {
    if (!m_trackedEntity) return;
    const math::BoundingBox2f box = m_trackedEntity->GetBoundingBox();
    if (!box.IsFinite()) {
        m_trackedEntity->SetTracked(false);
        m_trackedEntity = nullptr;
        return;
    }
    const Matrix& target = GetTargetWorldToGUI();
    const math::Vec2 shift = math::Inverted(target)(GetMiddle()) - box.GetCenter();
    SetWorldToGUI(target * Matrix::Translation(shift.x, shift.y), false);
}

}  // namespace app
