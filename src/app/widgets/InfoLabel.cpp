#include "app/widgets/InfoLabel.h"

namespace app {

InfoLabel::InfoLabel(const Source& source, float minWidth)
    : Label(String(), "InfoLabel"), m_source(source), m_minWidth(minWidth) {
    Show();
}

void InfoLabel::Update(float dt) {
    Label::Update(dt);
    Show();
}

void InfoLabel::Show() {
    const String text = m_source();
    if (text == GetText() && GetSize().x >= m_minWidth) return;
    SetText(text);
    if (GetSize().x < m_minWidth) SetSize(m_minWidth, GetSize().y);
}

}  // namespace app
