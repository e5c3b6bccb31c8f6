#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace rendering {

// Collects quads that share texture and state and draws them in one call, instead of one call per vertex.
// Keep the batch as a member or static: its memory is used again from frame to frame.
class VertexBatch {
  public:
    // Quads without a colour are white; the present colour plays no part in a batch with colours.
    enum ColorMode {
        PresentColor,  // all in the renderer's colour
        OwnColors,     // each quad has its own
    };

    explicit VertexBatch(ColorMode mode = PresentColor) : m_mode(mode) {}

    // Texture coordinates `tcMin` stand at `min`.
    void AddQuad(math::Vec2 min, math::Vec2 max, math::Vec2 tcMin = {0, 0}, math::Vec2 tcMax = {1, 1},
                 const math::Vec4& color = {1, 1, 1, 1});
    // Corners in order round the quad.
    void AddQuad(const math::Vec2* corners, const math::Vec2* texCoords,
                 const math::Vec4& color = {1, 1, 1, 1});
    // The parallelogram center +- u +- v, with texture coordinates from 0, 0 at -u, -v to 1, 1 at +u, +v.
    void AddSprite(math::Vec2 center, math::Vec2 u, math::Vec2 v, const math::Vec4& color = {1, 1, 1, 1});
    // The same without its corners: the octagon round the ellipse with the half axes u and v. A sixth fewer
    // pixels for a round picture, as three quads.
    void AddRoundSprite(math::Vec2 center, math::Vec2 u, math::Vec2 v);

    bool IsEmpty() const { return m_vertices.empty(); }
    size_t GetQuadCount() const { return m_vertices.size() / 4; }
    void Clear() { m_vertices.clear(); }

    void Draw() const;
    // Quads [first, first + count) only, for a batch sorted by texture.
    void Draw(size_t first, size_t count) const;
    void DrawAndClear() {
        Draw();
        Clear();
    }

  private:
    struct Vertex {
        math::Vec2 position;
        math::Vec2 texCoord;
        uint8_t color[4];
    };

    ColorMode m_mode;
    util::VectorPOD<Vertex> m_vertices;  // four per quad
};

}  // namespace rendering
