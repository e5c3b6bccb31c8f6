#include "app/widgets/EntityPanels.h"

#include <boost/format.hpp>
#include <cmath>
#include <memory>

#include "app/Language.h"
#include "app/entities/GeomEntity.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "gui/LookAndFeel.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/LabeledSlider.h"
#include "math/Color.h"
#include "physics/Body.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/ProfileTree.h"

namespace app {
namespace {

constexpr float INFO_WIDTH = 290;    // GUI units
constexpr float SWATCH_HEIGHT = 22;  // GUI units
constexpr float SWATCH_MARGIN = 4;
constexpr double MAX_HUE = 360;  // degrees

String FormatFigure(const char* key, double value, const char* unit) {
    if (std::isinf(value)) return Translate(key) + ": +inf\n";
    return boost::str(boost::format("%1%: %2$.4g %3%\n") % Translate(key) % value % unit);
}

// Of places and motions; what is less, such as the trembling of what lies still, is nothing.
double DropNoise(double value) {
    constexpr double LEAST = 1e-4;  // m, m/s, rad/s, J
    return std::fabs(value) < LEAST ? 0 : value;
}

String FormatVector(const char* key, math::Vec2 value, const char* unit) {
    return boost::str(boost::format("%1%: %2$.4g, %3$.4g %4%\n") % Translate(key) % DropNoise(value.x) %
                      DropNoise(value.y) % unit);
}

// What moves with a body: 1/2 m v^2 + 1/2 I w^2. None for what cannot move.
double GetEnergy(const physics::Body& body) {
    if (body.m_massInv == 0) return 0;
    const double v2 = double(body.m_vel.x) * body.m_vel.x + double(body.m_vel.y) * body.m_vel.y;
    return 0.5 * body.m_mass * v2 + 0.5 * body.m_inertia * double(body.m_angVel) * body.m_angVel;
}

String DescribeMotion(const physics::Body& body) {
    const math::Vec2 velocity = body.m_vel;
    return FormatFigure("EntInfoInertia", body.m_inertia, "kg m2") +
           FormatVector("EntInfoPos", body.m_pos, "m") + FormatVector("EntInfoVel", velocity, "m/s") +
           FormatFigure("EntInfoSpeed", DropNoise(std::hypot(velocity.x, velocity.y)), "m/s") +
           FormatFigure("EntInfoAngVel", DropNoise(body.m_angVel), "rad/s") +
           FormatFigure("EntInfoEnergy", DropNoise(GetEnergy(body)), "J");
}

String Describe(const EntityGroup& group) {
    double area = 0, mass = 0;
    physics::BodyPtr first;
    for (const EntityPtr& entity : group.Get()) {
        const auto shape = util::DynamicCast<GeomEntity>(entity);
        if (!shape) continue;
        shape->UpdateBodyPtr();
        if (!first) first = shape->GetBody();
        area += shape->GetGeom()->GetArea();
        mass += double(shape->GetGeom()->GetArea()) * shape->GetGeom()->m_density;
    }
    if (first && first->m_massInv == 0) mass = first->m_mass;
    String text = FormatFigure("EntInfoArea", area, "m2") + FormatFigure("EntInfoMass", mass, "kg");
    if (first) text += DescribeMotion(*first);
    text.pop_back();
    return text;
}

// The colour itself.
class Swatch : public gui::Component {
  public:
    explicit Swatch(const math::Vec3& hsl) : Component("Swatch"), m_hsl(hsl) { SetSize(0, SWATCH_HEIGHT); }

    void DrawComp() override {
        const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
        const math::Vec3 rgb = math::HSLtoRGB(m_hsl);
        const rendering::ScopedColor color(math::Vec4(rgb.x, rgb.y, rgb.z, 1));
        const math::Vec2 margin(SWATCH_MARGIN, SWATCH_MARGIN);
        rendering::Renderer::Instance().DrawQuad(margin, GetSize() - margin);
    }

  private:
    const math::Vec3& m_hsl;  // of the chooser, which owns this
};

}  // namespace

EntityInfo::EntityInfo(const EntityGroup& group)
    : InfoLabel([group] { return Describe(group); }, INFO_WIDTH) {}

// The snapshot is taken at the start of the drag and handed over at its end.
void MakeUndoable(gui::Slider& slider, Scene& scene) {
    const auto before = std::make_shared<SnapshotPtr>();
    const util::WeakPtr<util::Pointee> owner(&slider);
    Scene* const target = &scene;
    slider.GetOnDragStart().Add(new util::Callback([=] { *before = new Snapshot(*target); }, owner));
    slider.GetOnDragEnd().Add(new util::Callback(
        [=] {
            if (*before) Undoer::Instance().AddRestorer(*before, "UndoSliderChange");
            *before = nullptr;
        },
        owner));
}

ColorChooser::ColorChooser(const EntityGroup& group)
    : Component("ColorChooser",
                new gui::ListLayout(gui::ListLayout::Vertical | gui::ListLayout::StretchCross)),
      m_group(group) {
    FollowColor();
    AddChild(new Swatch(m_hsl));
    AddSlider("ColorHue", &math::Vec3::x, MAX_HUE, 0);
    AddSlider("ColorSaturation", &math::Vec3::y, 1, 2);
    AddSlider("ColorLightness", &math::Vec3::z, 1, 2);
}

void ColorChooser::AddSlider(const char* key, math::real math::Vec3::*part, double max, int decimals) {
    const auto get = [this, part] { return double(m_hsl.*part); };
    const auto set = [this, part](double value) {
        math::Vec3 hsl = m_hsl;
        hsl.*part = static_cast<math::real>(value);
        SetHSL(hsl);
    };
    const gui::SliderPtr slider = new gui::FunctionSlider(0, max, get, set);
    slider->SetKey(key);
    MakeUndoable(*slider, m_group.GetScene());
    AddChild(new gui::LabeledSlider(Translate(key), slider, decimals));
}

// Of the first one, which an undo may have given another colour.
void ColorChooser::FollowColor() {
    const EntitySet entities = m_group.Get();
    if (entities.empty()) return;
    const math::Vec3 color = (*entities.begin())->GetColor();
    if (color != math::HSLtoRGB(m_hsl)) m_hsl = math::RGBtoHSL(color);
}

void ColorChooser::SetHSL(math::Vec3 hsl) {
    m_hsl = hsl;
    const math::Vec3 rgb = math::HSLtoRGB(hsl);
    for (const EntityPtr& entity : m_group.Get()) entity->SetColor(rgb);
}

void ColorChooser::Update(float dt) {
    PROFILE_SECTION("ColorChooser::Update");
    FollowColor();
    Component::Update(dt);
}

}  // namespace app
