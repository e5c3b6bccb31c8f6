#include "gui/Component.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Input.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/Assert.h"
#include "util/Redraw.h"

namespace gui {

using math::BoundingBox2f;
using math::TMatrix3;
using math::Vec2;
using rendering::Renderer;

namespace {

// Raised for a scope, also when an exception ends it.
class ScopedFlag {
  public:
    explicit ScopedFlag(bool& flag) : m_flag(flag) { m_flag = true; }
    ~ScopedFlag() { m_flag = false; }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;

  private:
    bool& m_flag;
};

}  // namespace

Component::Component(const String& name, const LayoutPtr& layout)
    : InputDelegator(name), m_textFormat(LookAndFeel::Get().GetTextFormat()), m_layout(layout) {}

// ---- drawing -----------------------------------------------------------------------------------------

void Component::Draw() {
    Renderer& renderer = Renderer::Instance();
    const rendering::ScopedColor kept;
    renderer.MultColor(m_color);
    DrawComp();
    DrawChildren();
}

void Component::DrawChildren() {
    for (const ComponentPtr& child : m_children) {
        const rendering::ScopedMatrix matrix;
        const Vec2 origin = child->m_pos + child->GetContentOffset();
        glTranslatef(origin.x, origin.y, child->m_z);
        child->Draw();
    }
}

void Component::DrawComp() {
    m_border.Draw(m_size.x, m_size.y);
}

// Children may leave while they are updated, their own window closing for instance.
void Component::Update(float dt) {
    for (size_t i = m_children.size(); i-- > 0;) {
        if (i >= m_children.size()) continue;
        const ComponentPtr child = m_children[i];
        child->Update(dt);
    }
}

// What ends may take its own component away.
void Component::EndGesture() {
    const ComponentList children = m_children;
    for (const ComponentPtr& child : children) child->EndGesture();
}

// ---- place -------------------------------------------------------------------------------------------

TMatrix3<float> Component::GetInverseTransform() const {
    const Component* const parent = GetParent();
    return parent ? GetFromParent() * parent->GetInverseTransform() : GetFromParent();
}

TMatrix3<float> Component::GetFromParent() const {
    const Vec2 origin = m_pos + GetContentOffset();
    return TMatrix3<float>::Translation(-origin.x, -origin.y);
}

void Component::SetPos(float x, float y) {
    const Vec2 pos(x, y);
    if (pos == m_pos) return;
    m_pos = pos;
    util::Redraw::Request();
    OnGeometryChanged();
}

void Component::SetSize(float w, float h) {
    const Vec2 size(w, h);
    if (size == m_size) return;
    m_size = size;
    util::Redraw::Request();
    OnGeometryChanged();
}

// Size of a child, layout of the parent and size of the parent may call each other in a circle, which a
// NaN, never equal to itself, would keep going: one round has to be enough.
void Component::OnGeometryChanged() {
    if (!m_autoNotify || m_notifying) return;
    const ScopedFlag notifying(m_notifying);
    for (size_t i = m_children.size(); i-- > 0;) {
        if (i < m_children.size()) m_children[i]->FitToParent();
    }
    if (Component* const parent = GetParent()) parent->DoLayout();
}

void Component::DoLayout() {
    if (!m_layout) return;
    ComponentList children;
    for (const ComponentPtr& child : m_children) {
        if (!child->IsExcludedFromLayout()) children.push_back(child);
    }
    m_layout->Apply(*this, children);
}

// The parent's own place is added, too, which only a parent at 0, 0 makes right; the world view and its
// interface, which fill the root, are such.
void Component::FitToParent() {
    const Component* const parent = GetParent();
    if (!m_fillParent || !parent) return;
    m_border = Border();
    const Vec2 size = parent->m_size, pos = parent->m_pos + parent->GetContentOffset();
    SetSize(size.x, size.y);
    SetPos(pos.x, pos.y);
}

Vec2 Component::GetOuterSize() const {
    return m_size + GetContentOffset() + Vec2(m_border.GetRight(), m_border.GetBottom());
}

BoundingBox2f Component::GetOuterBox() const {
    const Vec2 offset = GetContentOffset();
    return {-offset, GetOuterSize() - offset};
}

bool Component::IsInContentBox(Vec2 gui) const {
    return BoundingBox2f({0, 0}, m_size).Contains(ToContent(gui));
}

Component* Component::FindAt(Vec2 place) {
    const Vec2 own = GetFromParent()(place);
    for (size_t i = m_children.size(); i-- > 0;) {
        if (Component* const found = m_children[i]->FindAt(own)) return found;
    }
    return TakesMouse() && GetOuterBox().Contains(own) ? this : nullptr;
}

bool Component::IsHit(Vec2 gui) const {
    if (!IsInOuterBox(gui)) return false;
    const Component* const top = GetTreeRoot().FindAt(gui);
    return top != nullptr && top->IsInside(*this);
}

bool Component::IsMouseInside() const {
    return IsHit(Input::Instance().GetMousePosition());
}

bool Component::IsInside(const Component& other) const {
    for (const Component* c = this; c != nullptr; c = c->GetParent()) {
        if (c == &other) return true;
    }
    return false;
}

Component& Component::GetTreeRoot() const {
    const Component* root = this;
    while (const Component* const parent = root->GetParent()) root = parent;
    return const_cast<Component&>(*root);
}

bool Component::HasFocus() const {
    return Focus::Get() == this;
}

void Component::SetBorder(const Border& border) {
    m_border = border;
    OnGeometryChanged();
}

void Component::SetFillParent(bool fillParent) {
    m_fillParent = fillParent;
    FitToParent();
}

void Component::SetExcludedFromLayout(bool excluded) {
    m_excludedFromLayout = excluded;
    if (Component* const parent = GetParent()) parent->DoLayout();
}

// ---- children ----------------------------------------------------------------------------------------

void Component::AddChild(const ComponentPtr& newChild) {
    const ComponentPtr child = newChild;  // the argument may be the very entry that is removed below
    CODE_ASSERTION(child);
    if (Component* const parent = child->GetParent()) parent->RemoveChild(child);
    AddReflected(child);
    m_children.push_back(child);
    util::Redraw::Request();
    child->m_parent = this;
    child->FitToParent();
    AddListener(child);
    DoLayout();
    child->WatchPriority();
    SortChildren();
}

void Component::RemoveChild(const ComponentPtr& oldChild) {
    const ComponentPtr child = oldChild;
    if (!child) return;
    RemoveListener(*child);
    // The world view has moved on to a place of its own in the script tree by now.
    if (child->GetOwner() == this) RemoveVariable(child->GetReflectedName());
    const auto place = std::find(m_children.begin(), m_children.end(), child);
    if (place == m_children.end()) return;
    m_children.erase(place);
    util::Redraw::Request();
    if (child->GetParent() == this) child->m_parent = ComponentWeakPtr();
    DoLayout();
}

void Component::RemoveAllChildren() {
    const ComponentList children = m_children;
    for (const ComponentPtr& child : children) RemoveChild(child);
}

// Once per component, however often it changes its parent.
void Component::WatchPriority() {
    if (m_watchesPriority) return;
    m_watchesPriority = true;
    GetOnPriorityChange().Add(new util::Callback([this] { ResortInParent(); }, this));
}

void Component::ResortInParent() {
    if (Component* const parent = GetParent()) parent->SortChildren();
}

// A layout shows the children in the order of adding.
void Component::SortChildren() {
    if (m_layout) return;
    std::stable_sort(m_children.begin(), m_children.end(), [](const ComponentPtr& a, const ComponentPtr& b) {
        return a->GetPriority() < b->GetPriority();
    });
}

}  // namespace gui
