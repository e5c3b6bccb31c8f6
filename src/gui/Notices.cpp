#include "gui/Notices.h"

#include <algorithm>
#include <cmath>

#include "logging/Logger.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/Clock.h"
#include "util/Encoding.h"
#include "util/Redraw.h"

namespace gui {
namespace {

using math::Vec2;
using math::Vec4;

constexpr int NOTICES_PRIORITY = 70;
constexpr size_t MAX_NOTICES = 3;
constexpr double DURATION = 7;  // seconds
constexpr double FADING = 1;    // of these
constexpr float MARGIN = 8;     // GUI units to the window's edges and within the box
constexpr float MAX_WIDTH = 560;
constexpr Vec4 BACKGROUND(0.08f, 0.08f, 0.1f, 0.85f);
constexpr Vec4 WARNING_COLOR(1, 0.85f, 0.4f, 1), ERROR_COLOR(1, 0.6f, 0.55f, 1);

bool TakePrefix(String& text, const String& prefix) {
    if (text.compare(0, prefix.size(), prefix) != 0) return false;
    text.erase(0, prefix.size());
    return true;
}

}  // namespace

Notices::Notices() : Component("Notices") {
    SetPriority(NOTICES_PRIORITY);
}

void Notices::Add(const String& line) {
    String text = util::ToShown(line);
    const bool isError = TakePrefix(text, logging::ERROR_PREFIX);
    if (!isError && !TakePrefix(text, logging::WARNING_PREFIX)) return;
    const double end = util::Clock::Now() + DURATION;
    for (Notice& notice : m_notices) {
        if (notice.text.m_text != text) continue;
        notice.end = end;
        return;
    }
    TextFormat format = GetTextFormat();
    const float room = GetParent() ? GetParent()->GetSize().x - 4 * MARGIN : MAX_WIDTH;
    format.m_maxWidth = std::min(room, MAX_WIDTH);
    util::Redraw::Request();
    m_notices.push_back({FormatText(format, text), isError ? ERROR_COLOR : WARNING_COLOR, end});
    if (m_notices.size() > MAX_NOTICES) m_notices.pop_front();
}

String Notices::GetShownText() const {
    String all;
    for (const Notice& notice : m_notices) all += (all.empty() ? "" : "\n") + notice.text.m_text;
    return all;
}

void Notices::Update(float dt) {
    Component::Update(dt);
    const double now = util::Clock::Now();
    if (!m_notices.empty() && m_notices.front().end < now + FADING) util::Redraw::Request();
    while (!m_notices.empty() && m_notices.front().end < now) m_notices.pop_front();
}

// The newest at the lower edge.
void Notices::DrawComp() {
    if (!GetParent()) return;
    float bottom = GetParent()->GetSize().y - m_floor - MARGIN;
    for (size_t i = m_notices.size(); i-- > 0;) {
        DrawNotice(m_notices[i], bottom);
        bottom -= m_notices[i].text.m_height + 3 * MARGIN;
    }
}

void Notices::DrawNotice(const Notice& notice, float bottom) const {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const rendering::ScopedColor kept;
    const double left = (notice.end - util::Clock::Now()) / FADING;
    renderer.MultColor({1, 1, 1, static_cast<float>(std::clamp(left, 0.0, 1.0))});
    const Vec2 size(notice.text.m_width + 2 * MARGIN, notice.text.m_height + 2 * MARGIN);
    const Vec2 corner(std::floor((GetParent()->GetSize().x - size.x) / 2), bottom - size.y);
    {
        const rendering::ScopedColor faded;
        const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
        renderer.MultColor(BACKGROUND);
        renderer.DrawQuad(corner, corner + size);
    }
    TextFormat format = notice.text.m_format;
    format.m_color = notice.color;
    DrawText(format, corner.x + MARGIN, corner.y + MARGIN, notice.text);
}

}  // namespace gui
