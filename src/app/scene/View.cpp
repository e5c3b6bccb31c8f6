#include "app/scene/View.h"

#include <algorithm>
#include <cmath>

#include "app/entities/Entity.h"
#include "app/scene/Scene.h"
#include "input/Input.h"
#include "logging/Log.h"

namespace app {

namespace {

constexpr double VIEW_TIME = 0.1;     // seconds that the view takes to glide to its target
constexpr float SCENE_MARGIN = 1.1f;  // of the scene's extent, at ZoomToScene
constexpr float LONE_MARGIN = 3;      // the same where one shape is all there is
constexpr float MOST_BELOW = 0.22f;   // part of the view's height left free under the scene, mostly ground
constexpr float MOST_LEFT = 0.25f;    // part of the view's width that is kept for the interface
constexpr float MOST_ABOVE = 0.15f;   // part of its height
constexpr float CM_PER_INCH = 2.54f;

using Matrix = math::TMatrix3<float>;

Matrix MakeView(math::Vec2 middle, float scale, math::Vec2 world) {
    return Matrix::Translation(middle.x, middle.y) * Matrix::Scale(scale, -scale) *
           Matrix::Translation(-world.x, -world.y);
}

// Farther away the differences between two views would leave the numbers, and the mouse be nowhere.
constexpr float MAX_ENTRY = 1e30f;

bool IsBounded(const Matrix& matrix) {
    for (const auto& row : matrix.m) {
        for (const float value : row) {
            if (!(std::fabs(value) < MAX_ENTRY)) return false;
        }
    }
    return true;
}

bool IsUsable(const Matrix& matrix) {
    return IsBounded(matrix) && matrix.m[0][0] != 0 && IsBounded(math::Inverted(matrix));
}

float GetMargin(const Scene& scene) {
    const EntityList& entities = scene.GetEntities();
    const auto isBounded = [](const EntityPtr& entity) { return entity->GetBoundingBox().IsFinite(); };
    return std::count_if(entities.begin(), entities.end(), isBounded) == 1 ? LONE_MARGIN : SCENE_MARGIN;
}

}  // namespace

// A view that nobody has set yet would show the world upside down.
void View::Update() {
    if (m_view.GetTarget() == Matrix()) SetDefaultView(false);
    m_view.Update();
    m_worldToGUI = m_view.Get();
}

void View::Arrive() {
    SetWorldToGUI(GetTargetWorldToGUI(), false);
}

void View::SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate) {
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

void View::SetZoom(float scale, bool animate) {
    const Matrix& target = GetTargetWorldToGUI();
    if (target.m[0][0] == scale) return;
    const math::Vec2 middle = GetMiddle();
    SetWorldToGUI(MakeView(middle, scale, math::Inverted(target)(middle)), animate);
}

void View::ZoomAbout(math::Vec2 gui, float factor) {
    const Matrix& target = GetTargetWorldToGUI();
    const float scale = std::clamp(target.m[0][0] * factor, GetMinZoom(), GetMaxZoom());
    SetWorldToGUI(MakeView(gui, scale, math::Inverted(target)(gui)));
}

void View::Pan(float x, float y, bool animate) {
    SetWorldToGUI(Matrix::Translation(x, y) * GetTargetWorldToGUI(), animate);
}

void View::SetDefaultView(bool animate) {
    SetWorldToGUI(MakeView(GetMiddle(), GetDefaultZoom(), {}), animate);
}

void View::SetRooms(float left, float top) {
    m_leftRoom = left;
    m_topRoom = top;
}

float View::GetLeftRoom() const {
    return std::min(m_leftRoom, MOST_LEFT * m_size.x);
}

float View::GetTopRoom() const {
    return std::min(m_topRoom, MOST_ABOVE * m_size.y);
}

void View::ZoomToScene(const Scene& scene) {
    ++m_sceneFits;
    const math::BoundingBox2f box = scene.GetExtent();
    // Planes alone have no extent to fit, and without a size there is nothing to fit it into.
    if (!box.IsFinite() || !(m_size.x > 0) || !(m_size.y > 0)) return SetDefaultView(true);
    const math::Vec2 extent = box.GetSize();
    const float left = GetLeftRoom(), width = m_size.x - left, room = m_size.y - GetTopRoom();
    const float margin = GetMargin(scene);
    const float worldPerGUI = margin * std::max(extent.x / width, extent.y / room);
    const float scale = std::clamp(1 / worldPerGUI, GetMinZoom(), GetMaxZoom());
    const float height = extent.y * scale;
    const float highest = room - height * (1 + margin) / 2;  // with its margin above it
    const float below = std::min({(m_size.y - height) / 2, MOST_BELOW * m_size.y, highest});
    const math::Vec2 middle(left + width / 2, m_size.y - below - height / 2);
    SetWorldToGUI(MakeView(middle, scale, box.GetCenter()));
}

math::Vec2 View::GetMousePos() const {
    return GUIToWorld(gui::Input::Instance().GetMousePosition());
}

math::BoundingBox2f View::GetViewBox() const {
    math::BoundingBox2f box;
    box.Extend(GUIToWorld({0, 0}));
    box.Extend(GUIToWorld(m_size));
    return box;
}

float View::GetWorldPerGUI() const {
    return math::Inverted(m_worldToGUI).m[0][0];
}

// An inch holds DPI pixels, and a GUI unit holds `scale` of them.
float View::GetCmToWorld() const {
    const float scale = gui::Input::Instance().GetSettings().m_scale;
    return GetWorldPerGUI() / scale * m_dpi->Get() / CM_PER_INCH;
}

void View::KeepZoomInBounds() {
    if (GetZoom() < GetMinZoom()) {
        SetZoom(GetMinZoom());
    } else if (GetZoom() > GetMaxZoom()) {
        SetZoom(GetMaxZoom());
    }
}

// At once and from the target: a zoom under way ends with it, and the entity stays in the middle.
void View::Follow(Scene& scene) {
    if (!scene.GetTrackedEntity()) return;
    const math::BoundingBox2f box = scene.GetTrackedEntity()->GetBoundingBox();
    if (!box.IsFinite()) {
        scene.GetTrackedEntity()->SetTracked(false);
        scene.Track(nullptr);
        return;
    }
    const Matrix& target = GetTargetWorldToGUI();
    const math::Vec2 shift = math::Inverted(target)(GetMiddle()) - box.GetCenter();
    SetWorldToGUI(target * Matrix::Translation(shift.x, shift.y), false);
}

}  // namespace app
