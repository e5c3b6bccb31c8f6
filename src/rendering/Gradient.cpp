#include "rendering/Gradient.h"

#include <algorithm>

#include "rendering/Renderer.h"

namespace rendering {

namespace {

math::Vec4 Clamp(const math::Vec4& c) {
    const auto clamp = [](float part) { return std::min(std::max(0.0f, part), 1.0f); };
    return {clamp(c.x), clamp(c.y), clamp(c.z), clamp(c.w)};
}

}  // namespace

void Gradient::SetColors(const math::Vec4& start, const math::Vec4& end) {
    m_start = Clamp(start);
    m_end = Clamp(end);
}

void Gradient::DrawAcross(math::Vec2 min, math::Vec2 max) const {
    const math::Vec2 corners[4] = {min, {max.x, min.y}, max, {min.x, max.y}};
    Draw(corners);
}

void Gradient::DrawDown(math::Vec2 min, math::Vec2 max) const {
    const math::Vec2 corners[4] = {min, {min.x, max.y}, max, {max.x, min.y}};
    Draw(corners);
}

// The second and the third corner are those of the end.
void Gradient::Draw(const math::Vec2* corners) const {
    Renderer& renderer = Renderer::Instance();
    const math::Vec4 start = m_start * renderer.GetColor(), end = m_end * renderer.GetColor();
    const math::Vec4 colors[4] = {start, end, end, start};
    renderer.DrawColored(corners, colors, 4);
}

}  // namespace rendering
