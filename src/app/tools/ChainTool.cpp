#include "app/tools/ChainTool.h"

#include <algorithm>
#include <cmath>

#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/ToolSettings.h"
#include "input/Key.h"
#include "physics/Geom.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"

namespace app {

using math::real;
using math::Vec2;

namespace {

constexpr real NOMINAL_RADIUS = 1;  // cm on the screen
constexpr real LINK_LENGTH = 0.4f;  // in nominal radii
constexpr real MOST_LINKS = 500;    // more would not hold together, and take minutes to make
constexpr real WAY_STEPS = 1000;    // at most, of a search for the outline
const math::Vec4 PREVIEW_COLOR(0.85f, 1.0f, 0.85f, 1.0f);

// Adds members to the scene, a link before the hinge that leads to it, so that hinges lie on top.
class ChainBuilder {
  public:
    explicit ChainBuilder(Scene& scene)
        : m_scene(scene), m_color(scene.GetNextColor()), m_chain(new Chain(scene.GetFreeChain())) {}

    void Add(const EntityPtr& entity, size_t place) {
        entity->SetColor(m_color);
        m_chain->AddEntity(place, entity);
        m_scene.AddEntity(entity);
    }
    void AddHinge(const JointEntity::End& end0, const JointEntity::End& end1, real size, size_t place) {
        const HingeEntityPtr hinge = new HingeEntity(size);
        hinge->SetEnds(end0, end1);
        hinge->Rebuild();
        Add(hinge, place);
    }

  private:
    Scene& m_scene;
    const math::Vec3 m_color;  // of the whole chain
    const ChainPtr m_chain;
};

// How far it is from a point inside the geom to its outline, on the way to another point; that whole way
// where it does not leave the geom, nothing from a point outside.
real WayOut(const physics::Geom& geom, Vec2 from, Vec2 to) {
    const real whole = math::Length(to - from), leastStep = whole / WAY_STEPS;
    if (dynamic_cast<const physics::WorldGeom*>(&geom) != nullptr) return 0;
    for (real at = 0; at < whole;) {
        const real distance = geom.GetDistance(from + (to - from) * (at / whole));
        if (distance >= 0) return at;
        at += std::max(-distance, leastStep);
    }
    return whole;
}

}  // namespace

ChainTool::ChainTool(const Workbench& bench) : Tool(bench) {}
ChainTool::~ChainTool() noexcept(false) = default;

JointEntity::End ChainTool::PickAt(Vec2 world) const {
    return JointEntity::EndAt(m_scene.GetGeomAt(world), world);
}

Vec2 ChainTool::GetStart() const {
    return m_first.geom->GetTransform()(m_first.pos);
}

void ChainTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse) return;
    event.m_handled = true;
    m_before = new Snapshot(m_scene);
    m_first = PickAt(m_view.GUIToWorld(event.m_position));
}

void ChainTool::OnDragEnd(gui::DragEvent& event) {
    if (!m_before || event.m_key != gui::Key::LeftMouse) return;
    event.m_handled = true;
    const Vec2 to = m_view.GUIToWorld(event.m_position);
    const JointEntity::End last = PickAt(to);
    const Layout layout = LayOut(last.geom, to);
    if (layout.links > 0) {
        Build(layout, last);
        Undoer::Instance().AddRestorer(m_before, "UndoChain");
    }
    Cancel();
}

// Of a press deep in a shape only as much counts as one link is long, or the links would lie in the shape
// that they hang from and be thrown out of it.
ChainTool::Layout ChainTool::LayOut(const physics::GeomPtr& last, Vec2 to) const {
    const Vec2 from = GetStart();
    const real link = LINK_LENGTH * NOMINAL_RADIUS * m_view.GetCmToWorld();
    const real whole = math::Length(to - from);
    if (!(whole > 0)) return {};
    const Vec2 along = (to - from) / whole;
    const real skipped = std::max(WayOut(*m_first.geom, from, to) - link, 0.0f);
    const real left = std::max(WayOut(*last, to, from) - link, 0.0f);
    const real length = whole - skipped - left;
    if (!(length > 0)) return {};
    const auto links = static_cast<int>(std::clamp(std::floor(length / link + 0.5f), 2.0f, MOST_LINKS));
    return {from + along * skipped, along, 0.5f * length / static_cast<real>(links), links};
}

// The links lie from `half` to L - half along the line, in steps of a whole link.
void ChainTool::Build(const Layout& layout, const JointEntity::End& last) {
    const real half = layout.half;
    physics::Surface surface = GetSurface();
    surface.density *= m_settings.m_chainDensityFactor->Get();

    ChainBuilder builder(m_scene);
    JointEntity::End previous = m_first;
    size_t place = 0;
    const auto jointAt = [&](int i) {
        return layout.from + layout.along * (2 * half * static_cast<real>(i));
    };
    for (int i = 0; i < layout.links; ++i) {
        const Vec2 joint = jointAt(i);
        const physics::CirclePtr circle = new physics::Circle(half, joint + layout.along * half, surface);
        const JointEntity::End link{circle, {}};
        builder.Add(new CircleEntity(circle), place + 1);
        builder.AddHinge(JointEntity::EndAt(previous.geom, joint), JointEntity::EndAt(link.geom, joint), half,
                         place);
        place += 2;
        previous = link;
    }
    const Vec2 end = jointAt(layout.links);
    builder.AddHinge(JointEntity::EndAt(previous.geom, end), JointEntity::EndAt(last.geom, end), half, place);
}

// The links where they will lie, as far as the mouse has come.
void ChainTool::Draw() {
    if (!m_before) return;
    const Vec2 mouse = m_view.GetMousePos();
    const Layout layout = LayOut(PickAt(mouse).geom, mouse);
    const rendering::ScopedColor colored(PREVIEW_COLOR);
    rendering::ShapePainter& painter = rendering::ShapePainter::Instance();
    for (int i = 0; i < layout.links; ++i) {
        const Vec2 center = layout.from + layout.along * (layout.half * static_cast<real>(2 * i + 1));
        painter.DrawCircle({1, 0, center.x, center.y}, layout.half, {1, 1, 1});
    }
    painter.Flush();
}

bool ChainTool::Cancel() {
    const bool wasDrawing = static_cast<bool>(m_before);
    m_before = nullptr;
    m_first = {};
    return wasDrawing;
}

}  // namespace app
