#include "app/widgets/EntityChecks.h"

#include "app/Language.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "script/Conversions.h"

namespace app {
namespace {

using State = gui::AbstractToggleButton::State;

const char* const ARROW_KEYS = "arrowkeys";
const char* const COLLISION_GROUPS[] = {"A", "B", "C"};  // bits 0 to 2

// The change as a step of the history.
template <class Change>
void DoAsStep(const EntityGroup& group, Change change) {
    const SnapshotPtr before = new Snapshot(group.GetScene());
    change();
    Undoer::Instance().AddRestorer(before, "UndoSliderChange");
}

// Of several answers: what they agree on.
class Agreement {
  public:
    void Add(bool on) { (on ? m_some : m_lacks) = true; }
    State Get() const {
        if (m_some && m_lacks) return State::Unknown;
        return m_some ? State::On : State::Off;
    }

  private:
    bool m_some = false;
    bool m_lacks = false;
};

// One collision group.
class CollideSetCheckbox : public gui::Checkbox {
  public:
    CollideSetCheckbox(const EntityGroup& group, int bit)
        : Checkbox(COLLISION_GROUPS[bit], "CollideSetCheckbox"), m_group(group), m_mask(1 << bit) {
        SetKey(COLLISION_GROUPS[bit]);
        SetStateSilent(GetShared());
    }

    void Update(float dt) override {
        Checkbox::Update(dt);
        SetStateSilent(GetShared());
    }

    void SetState(State state) override {
        DoAsStep(m_group, [&] {
            for (const auto& attrib : m_group.FindAttribs<int>("collideSet")) {
                attrib->Set(state == On ? attrib->Get() | m_mask : attrib->Get() & ~m_mask);
            }
        });
        Checkbox::SetState(state);
    }

  private:
    State GetShared() const {
        Agreement agreement;
        for (const auto& attrib : m_group.FindAttribs<int>("collideSet")) {
            agreement.Add((attrib->Get() & m_mask) != 0);
        }
        return agreement.Get();
    }

    const EntityGroup m_group;
    const int m_mask;
};

}  // namespace

AttribGroupCheckbox::AttribGroupCheckbox(const char* key, const EntityGroup& group, const char* attrib)
    : MultiAttribCheckbox(Translate(key), group.FindAttribs<bool>(attrib)), m_group(group) {
    SetKey(key);
}

void AttribGroupCheckbox::SetState(State state) {
    DoAsStep(m_group, [&] { MultiAttribCheckbox::SetState(state); });
}

// ---- following

FollowObjectCheckbox::FollowObjectCheckbox(const EntityGroup& group)
    : Checkbox(Translate("FollowObject"), "FollowObjectCheckbox"), m_group(group) {
    SetKey("FollowObject");
    SetStateSilent(GetTracking());
}

State FollowObjectCheckbox::GetTracking() const {
    const EntityPtr& tracked = m_group.GetScene().GetTrackedEntity();
    return tracked && m_group.Get().count(tracked) != 0 ? On : Off;
}

void FollowObjectCheckbox::Update(float dt) {
    Checkbox::Update(dt);
    SetStateSilent(GetTracking());
}

void FollowObjectCheckbox::SetState(State state) {
    const EntitySet entities = m_group.Get();
    m_group.GetScene().Track(state == On && !entities.empty() ? *entities.begin() : EntityPtr());
    Checkbox::SetState(state);
}

// ---- motors

ControllerSelector::ControllerSelector(const EntityGroup& group)
    : Checkbox(Translate("HingeController"), "ControllerSelector"), m_group(group) {
    SetKey("HingeController");
}

void ControllerSelector::Update(float dt) {
    Checkbox::Update(dt);
    Agreement agreement;
    for (const auto& attrib : m_group.FindAttribs<String>("controller")) {
        agreement.Add(attrib->Get() == ARROW_KEYS);
    }
    SetStateSilent(agreement.Get());
}

void ControllerSelector::SetState(State state) {
    DoAsStep(m_group, [&] {
        for (const auto& attrib : m_group.FindAttribs<String>("controller")) {
            attrib->SetValue(script::ValueToObject(String(state == On ? ARROW_KEYS : "")));
        }
    });
    Checkbox::SetState(state);
}

// ---- collisions

CollideSetMenu::CollideSetMenu(const EntityGroup& group)
    : Component("CollideSetMenu", new gui::ListLayout(gui::ListLayout::Horizontal)) {
    for (int bit = 0; bit < 3; ++bit) AddChild(new CollideSetCheckbox(group, bit));
}

}  // namespace app
