#include "app/windows/EntityPopup.h"

#include <algorithm>
#include <limits>

#include "app/Language.h"
#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/scene/AppGUISettings.h"
#include "app/tools/EntityOperations.h"
#include "app/widgets/EntityChecks.h"
#include "app/widgets/EntityPanels.h"
#include "app/widgets/Menu.h"
#include "app/windows/Commands.h"
#include "app/windows/Rows.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/LabeledSlider.h"
#include "gui/components/ScrollArea.h"
#include "math/Geometry.h"

namespace app {
namespace {

using gui::WindowPtr;

constexpr double RPM = 2 * math::PI / 60;  // rad/s of a revolution per minute

// Ranges and defaults of the sliders.
struct SliderRow {
    const char* m_key;
    const char* m_attrib;
    double m_min;
    double m_max;
    double m_default;
    bool m_logarithmic;
    int m_decimals;
};
const SliderRow GEOM_SLIDERS[] = {
    {"Friction", "friction", 0, 1, 0.5, false, 2},
    {"Bounciness", "restitution", 0, 1, 0.5, false, 2},
    {"Density", "density", 0.01, 100, 2, true, 2},
};
const SliderRow MOTOR_STRENGTH = {"MotorStrength", "motorTorque", 0.1, 100000, 100, true, 1};
const SliderRow MOTOR_SPEED = {"MotorSpeed", "motorSpeed", 1, 600, 15, true, 1};
const SliderRow SPRING_SLIDERS[] = {
    {"SpringStrength", "strengthFactor", 0.001, 1, 0.05, true, 3},
    {"SpringDamping", "dampingFactor", 0, 1, 0.1, false, 2},
};

util::SharedPtr<gui::MultiAttribSlider> MakeSlider(const EntityGroup& group, const SliderRow& row) {
    const util::SharedPtr<gui::MultiAttribSlider> slider =
        new gui::MultiAttribSlider(row.m_min, row.m_max, group.FindAttribs<float>(row.m_attrib));
    slider->SetLogarithmic(row.m_logarithmic);
    slider->SetDefault(row.m_default);
    MakeUndoable(*slider, group.GetScene());
    return slider;
}

gui::ComponentPtr MakeRow(const EntityGroup& group, const SliderRow& row) {
    return MakeSliderRow(row.m_key, MakeSlider(group, row), {row.m_decimals, String()});
}

// Far left the motor turns backwards as fast as it can, far right forwards.
gui::ComponentPtr MakeSpeedRow(const EntityGroup& group) {
    const auto slider = MakeSlider(group, MOTOR_SPEED);
    slider->SetFactor(RPM);
    slider->SetMinClamp(-std::numeric_limits<double>::infinity());
    slider->SetMaxClamp(std::numeric_limits<double>::infinity());
    return MakeSliderRow(MOTOR_SPEED.m_key, slider, {MOTOR_SPEED.m_decimals, " rpm"});
}

template <class Kind>
bool Is(const EntityPtr& entity) {
    return static_cast<bool>(util::DynamicCast<Kind>(entity));
}

bool IsInChain(const EntityPtr& entity) {
    return static_cast<bool>(entity->GetChain());
}

struct SelectRow {
    const char* m_key;
    const char* m_icon;
    bool (*m_matches)(const EntityPtr&);
};
const SelectRow SELECT_ROWS[] = {
    {"SelectPoly", "popup/shape", &Is<PolyEntity>},       {"SelectCircle", "tools/circle", &Is<CircleEntity>},
    {"SelectPlane", "tools/plane", &Is<PlaneEntity>},     {"SelectHinge", "tools/hinge", &Is<HingeEntity>},
    {"SelectFix", "tools/fixjoint", &Is<FixJointEntity>}, {"SelectSpring", "tools/spring", &Is<SpringEntity>},
    {"SelectChain", "tools/chain", &IsInChain},
};

void SelectMatching(Scene& scene, bool (*matches)(const EntityPtr&)) {
    EntitySet found;
    for (const EntityPtr& entity : scene.GetEntities()) {
        if (matches(entity)) found.insert(entity);
    }
    scene.GetSelection().Set(found);
}

// All that share a group with one of the entities.
void SelectGroups(Scene& scene, const EntitySet& entities) {
    std::set<script::Int> groups;
    for (const EntityPtr& entity : entities) {
        if (entity->HasGroup()) groups.insert(entity->GetGroup());
    }
    EntitySet found;
    for (const EntityPtr& entity : scene.GetEntities()) {
        if (entity->HasGroup() && groups.count(entity->GetGroup()) != 0) found.insert(entity);
    }
    scene.GetSelection().Set(found);
}

void Invert(Scene& scene) {
    EntitySet others;
    for (const EntityPtr& entity : scene.GetEntities()) {
        if (!scene.GetSelection().Has(entity)) others.insert(entity);
    }
    scene.GetSelection().Set(others);
}

}  // namespace

EntityPopup::EntityPopup(const Desk& desk)
    : EntityWindow("PopupTitle", EntityGroup(desk.m_scene, desk.m_scene.GetSelection().Get())),
      m_desk(desk),
      m_rows(new gui::Component("Rows", MakeRowLayout())) {
    SetTearOffTarget(&desk.m_interface);
    if (desk.m_scene.GetSelection().IsEmpty()) {
        AddSceneRows();
    } else {
        AddEntityRows();
        AddOrderRows();
        AddMenuRows();
    }
    AddChild(MakeScrolled(m_rows, m_desk, FRAME_ROOM));
    AddCloseButton();
}

EntityPopup::~EntityPopup() noexcept(false) = default;

// ---- rows

void EntityPopup::AddRow(const char* key, const char* icon,
                         const std::function<void(const EntitySet&)>& act) {
    const EntityGroup group = m_group;
    m_rows->AddChild(MakeActionRow(key, icon, [group, act] { act(group.Get()); }));
}

void EntityPopup::AddFinalRow(const char* key, const char* icon,
                              const std::function<void(const EntitySet&)>& act) {
    const EntityGroup group = m_group;
    m_rows->AddChild(MakeActionRow(key, icon, [this, group, act] {
        const auto chosen = act;
        const EntitySet entities = group.Get();
        Close();
        chosen(entities);
    }));
}

void EntityPopup::AddMenu(const char* key, const char* icon, const std::function<WindowPtr()>& factory) {
    m_rows->AddChild(new Menu(key, icon, m_desk.m_interface, factory));
}

void EntityPopup::AddSceneRows() {
    for (const char* const command : {"TipUndo", "NewScene", "GalleryButton", "EraseWater", "ResetView"}) {
        const Command chosen = m_desk.m_commands.Find(command);
        AddFinalRow(command, chosen.m_icon, [chosen](const EntitySet&) { chosen.m_run(); });
    }
    AddMenu("WindowsMenu", "file/fullscreen", [this] { return MakeWindowsMenu(); });
    if (m_desk.m_scene.GetTrackedEntity()) {
        Scene& scene = m_desk.m_scene;
        AddFinalRow("NoFollow", "blank", [&scene](const EntitySet&) { scene.Track(EntityPtr()); });
    }
}

void EntityPopup::AddEntityRows() {
    Scene& scene = m_desk.m_scene;
    const View& view = m_desk.m_view;
    AddFinalRow("Erase", "popup/erase", [&](const EntitySet& entities) { EraseSet(scene, entities); });
    AddFinalRow("Clone", "popup/clone", [&](const EntitySet& entities) { CloneSet(scene, view, entities); });
    AddMenu("ChooseColor", "popup/color", [this] { return MakeColorMenu(); });
    AddMenu("EntInfoButton", "popup/info", [this] { return MakeInfoMenu(); });
    if (!m_group.FindAttribs<int>("collideSet").empty()) {
        AddMenu("CollisionMenuButton", "popup/collisions", [this] { return MakeCollisionMenu(); });
    }
    AddMenu("SelectMenuButton", "popup/select", [this] { return MakeSelectMenu(); });
    const EntitySet chosen = m_group.Get();
    if (std::any_of(chosen.begin(), chosen.end(), &IsInChain)) {
        AddFinalRow("NoChain", "popup/nochain",
                    [&](const EntitySet& entities) { DissolveChain(scene, entities); });
    }
}

void EntityPopup::AddOrderRows() {
    Scene& scene = m_desk.m_scene;
    AddRow("MoveToBack", "popup/toback", [&](const EntitySet& entities) { MoveToBack(scene, entities); });
    AddRow("MoveToFront", "popup/tofront", [&](const EntitySet& entities) { MoveToFront(scene, entities); });
    AddFinalRow("Invert", "popup/invert", [&](const EntitySet&) { Invert(scene); });
    m_rows->AddChild(new FollowObjectCheckbox(m_group));
}

void EntityPopup::AddMenuRows() {
    if (!m_group.FindAttribs<float>("friction").empty()) {
        AddMenu("GeomMenuButton", "popup/shape", [this] { return MakeGeomMenu(); });
    }
    if (!m_group.FindAttribs<float>("motorSpeed").empty()) {
        AddMenu("HingeMenuButton", "popup/hingemenu", [this] { return MakeHingeMenu(); });
    }
    if (!m_group.FindAttribs<float>("strengthFactor").empty()) {
        AddMenu("SpringMenuButton", "popup/springmenu", [this] { return MakeSpringMenu(); });
    }
}

// ---- menus

// Each opens its window, or closes it.
WindowPtr EntityPopup::MakeWindowsMenu() const {
    const WindowPtr window = MakeRowWindow("WindowsMenu");
    for (const char* const command : {"ToolbarTitle", "ControlTitle", "FileButton", "OptionsButton",
                                      "GalleryButton", "AllSettings", "KeysTitle", "ShowStats"}) {
        window->AddChild(MakeCommandRow(m_desk, command));
    }
    return window;
}

WindowPtr EntityPopup::MakeColorMenu() const {
    const WindowPtr window = new EntityWindow("ChooseColor", m_group);
    window->AddChild(new ColorChooser(m_group));
    return window;
}

WindowPtr EntityPopup::MakeInfoMenu() const {
    const WindowPtr window = new EntityWindow("EntInfoMenu", m_group);
    window->AddChild(new EntityInfo(m_group));
    return window;
}

WindowPtr EntityPopup::MakeCollisionMenu() const {
    const WindowPtr window = new EntityWindow("CollisionMenu", m_group);
    window->AddChild(new CollideSetMenu(m_group));
    window->AddChild(new AttribGroupCheckbox("WaterCollisionOn", m_group, "collideWater"));
    return window;
}

WindowPtr EntityPopup::MakeSelectMenu() const {
    const WindowPtr window = MakeRowWindow("SelectMenu");
    Scene& scene = m_desk.m_scene;
    for (const SelectRow& row : SELECT_ROWS) {
        const auto matches = row.m_matches;
        window->AddChild(
            MakeActionRow(row.m_key, row.m_icon, [&scene, matches] { SelectMatching(scene, matches); }));
    }
    const EntityGroup group = m_group;
    window->AddChild(
        MakeActionRow("SelectGroup", "popup/group", [&scene, group] { SelectGroups(scene, group.Get()); }));
    return window;
}

WindowPtr EntityPopup::MakeGeomMenu() const {
    const WindowPtr window = new EntityWindow("GeomMenu", m_group);
    for (const SliderRow& row : GEOM_SLIDERS) {
        if (!m_group.FindAttribs<float>(row.m_attrib).empty()) window->AddChild(MakeRow(m_group, row));
    }
    const EntitySet entities = m_group.Get();
    size_t polygons = 0;
    for (const EntityPtr& entity : entities) polygons += Is<PolyEntity>(entity) ? 1 : 0;
    if (polygons == 0) return window;
    const EntityGroup group = m_group;
    Scene& scene = m_desk.m_scene;
    if (entities.size() == 1) {
        window->AddChild(MakeActionRow("Circle", "popup/2circle",
                                       [&scene, group] { TransformIntoCircle(scene, group.Get()); }));
    }
    const script::AttribPtr<int> maxDrops = m_desk.m_maxDrops;
    const View& view = m_desk.m_view;
    window->AddChild(MakeActionRow("CenterHinge", "popup/hinge",
                                   [&scene, &view, group] { CenterHinge(scene, view, group.Get()); }));
    window->AddChild(MakeActionRow("Liquify", "popup/liquify", [&scene, group, maxDrops] {
        Liquify(scene, group.Get(), maxDrops->Get());
    }));
    return window;
}

WindowPtr EntityPopup::MakeHingeMenu() const {
    const WindowPtr window = new EntityWindow("HingeMenu", m_group);
    window->AddChild(new AttribGroupCheckbox("HingeMotor", m_group, "motor"));
    window->AddChild(new AttribGroupCheckbox("HingeReversed", m_group, "ccw"));
    window->AddChild(new ControllerSelector(m_group));
    window->AddChild(MakeSpeedRow(m_group));
    window->AddChild(MakeRow(m_group, MOTOR_STRENGTH));
    return window;
}

WindowPtr EntityPopup::MakeSpringMenu() const {
    const WindowPtr window = new EntityWindow("SpringMenu", m_group);
    for (const SliderRow& row : SPRING_SLIDERS) window->AddChild(MakeRow(m_group, row));
    return window;
}

}  // namespace app
