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

namespace app {

using math::real;
using math::Vec2;

namespace {

constexpr real NOMINAL_RADIUS = 1;  // cm on the screen
constexpr real LINK_LENGTH = 0.4f;  // in nominal radii
constexpr real MOST_LINKS = 500;    // more would not hold together, and take minutes to make
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

// The same geom at another point of the world.
JointEntity::End At(const JointEntity::End& end, Vec2 world) {
    return {end.geom, end.geom->GetInvTransform()(world)};
}

}  // namespace

ChainTool::ChainTool(const Workbench& bench) : Tool(bench) {}
ChainTool::~ChainTool() noexcept(false) = default;

JointEntity::End ChainTool::PickAt(Vec2 world) const {
    const physics::GeomPtr geom = m_scene.GetGeomAt(world);
    return {geom, geom->GetInvTransform()(world)};
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
    const SnapshotPtr before = m_before;
    m_before = nullptr;
    if (math::Length(to - GetStart()) > 0) {
        Build(PickAt(to), to);
        Undoer::Instance().AddRestorer(before, "UndoChain");
    }
    Cancel();
}

// The links lie from `half` to L - half along the line, in steps of a whole link.
void ChainTool::Build(const JointEntity::End& last, Vec2 to) {
    const Vec2 from = GetStart();
    const real length = math::Length(to - from);
    const real wanted = length / (LINK_LENGTH * NOMINAL_RADIUS * m_view.GetCmToWorld());
    const auto links = static_cast<int>(std::clamp(std::floor(wanted + 0.5f), 2.0f, MOST_LINKS));
    const real half = 0.5f * length / static_cast<real>(links);
    const Vec2 along = (to - from) / length;
    physics::Surface surface = GetSurface();
    surface.density *= m_settings.m_chainDensityFactor->Get();

    ChainBuilder builder(m_scene);
    JointEntity::End previous = m_first;
    size_t place = 0;
    for (int i = 0; i < links; ++i) {
        const Vec2 joint = from + along * (2 * half * static_cast<real>(i));
        const physics::CirclePtr circle = new physics::Circle(half, joint + along * half, surface);
        const JointEntity::End link{circle, {}};
        builder.Add(new CircleEntity(circle), place + 1);
        builder.AddHinge(At(previous, joint), At(link, joint), half, place);
        place += 2;
        previous = link;
    }
    builder.AddHinge(At(previous, to), last, half, place);
}

void ChainTool::Draw() {
    if (!m_before) return;
    const rendering::ScopedColor colored(PREVIEW_COLOR);
    const Vec2 ends[] = {GetStart(), m_view.GetMousePos()};
    rendering::Renderer::Instance().DrawSegments(ends, 2);
}

bool ChainTool::Cancel() {
    const bool wasDrawing = static_cast<bool>(m_before);
    m_before = nullptr;
    m_first = {};
    return wasDrawing;
}

}  // namespace app
