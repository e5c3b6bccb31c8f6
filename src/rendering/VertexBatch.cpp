#include "rendering/VertexBatch.h"

#include <algorithm>
#include <cstddef>

#include "rendering/Gl.h"
#include "rendering/Recording.h"
#include "rendering/Renderer.h"

namespace rendering {

namespace {

uint8_t ToByte(float value) {
    // A NaN fails both comparisons of the clamp in this order and becomes 0.
    // A half is added rather than a function called, for this runs four times for each corner.
    return static_cast<uint8_t>(std::min(1.0f, std::max(0.0f, value)) * 255.0f + 0.5f);  // NOLINT(bugprone-*)
}

}  // namespace

void VertexBatch::AddQuad(math::Vec2 min, math::Vec2 max, math::Vec2 tcMin, math::Vec2 tcMax,
                          const math::Vec4& color) {
    const math::Vec2 corners[4] = {min, {max.x, min.y}, max, {min.x, max.y}};
    const math::Vec2 texCoords[4] = {tcMin, {tcMax.x, tcMin.y}, tcMax, {tcMin.x, tcMax.y}};
    AddQuad(corners, texCoords, color);
}

void VertexBatch::AddQuad(const math::Vec2* corners, const math::Vec2* texCoords, const math::Vec4& color) {
    Vertex vertex;
    vertex.color[0] = ToByte(color.x);
    vertex.color[1] = ToByte(color.y);
    vertex.color[2] = ToByte(color.z);
    vertex.color[3] = ToByte(color.w);
    for (int i = 0; i < 4; ++i) {
        vertex.position = corners[i];
        vertex.texCoord = texCoords[i];
        m_vertices.push_back(vertex);
    }
}

void VertexBatch::AddSprite(math::Vec2 center, math::Vec2 u, math::Vec2 v, const math::Vec4& color) {
    static constexpr math::Vec2 TEX_COORDS[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    const math::Vec2 corners[4] = {center - u - v, center + u - v, center + u + v, center - u + v};
    AddQuad(corners, TEX_COORDS, color);
}

void VertexBatch::AddRoundSprite(math::Vec2 center, math::Vec2 u, math::Vec2 v) {
    constexpr float T = 0.41421356f;  // tan(pi / 8)
    static constexpr math::Vec2 CORNERS[8] = {{-T, -1}, {T, -1}, {1, -T}, {1, T},
                                              {T, 1},   {-T, 1}, {-1, T}, {-1, -T}};
    static constexpr int QUADS[3][4] = {{0, 1, 4, 5}, {1, 2, 3, 4}, {0, 5, 6, 7}};
    for (const auto& quad : QUADS) {
        math::Vec2 corners[4], texCoords[4];
        for (int i = 0; i < 4; ++i) {
            const math::Vec2 corner = CORNERS[quad[i]];
            corners[i] = center + u * corner.x + v * corner.y;
            texCoords[i] = (corner + math::Vec2(1, 1)) * 0.5f;
        }
        AddQuad(corners, texCoords);
    }
}

void VertexBatch::Draw() const {
    Draw(0, GetQuadCount());
}

void VertexBatch::Draw(size_t first, size_t count) const {
    if (count == 0) return;
    const Vertex* const vertices = m_vertices.data();
    if (!Recording::Note(GL_QUADS,
                         {{&m_mode, sizeof(m_mode)}, {vertices + 4 * first, 4 * count * sizeof(Vertex)}}))
        return;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &vertices->position);
    glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), &vertices->texCoord);
    if (m_mode == OwnColors) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), vertices->color);
    }
    glDrawArrays(GL_QUADS, static_cast<GLint>(first * 4), static_cast<GLsizei>(count * 4));
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    if (m_mode != OwnColors) return;
    glDisableClientState(GL_COLOR_ARRAY);
    Renderer::Instance().RestoreColor();  // a colour array leaves GL's colour undefined
}

}  // namespace rendering
