#pragma once

#include <cstdint>
#include <vector>

#include "app/Fwd.h"
#include "gui/Component.h"
#include "math/BoundingBox.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"
#include "script/Attributes.h"

namespace app {

// The sky, paler toward its lower edge, with its clouds, behind the world. Clouds lie in a plane farther
// away, so they move at 0.7 of the world's speed on the screen, and they drift with the simulation: they stop
// when it stops and wrap round in a box about the view.
//
// It is a component for the sake of its size and its place in scripts ("App.Background"), not a child of
// anything: the renderer of the scene updates it and draws it first.
class Background : public gui::Component {
  public:
    Background(const View& view, const script::AttribPtr<bool>& drawClouds);

    void Update(float dt) override;  // real seconds
    void Draw() override;            // in GUI coordinates

    struct Cloud {
        float size;           // side of the square, world units
        math::Vec2 position;  // centre, world units
        math::Vec2 velocity;  // world units per simulated second
        uint32_t textureIndex;
    };
    const std::vector<Cloud>& GetClouds() const { return m_clouds; }

    // Part of the world's speed at which the clouds move on the screen.
    static constexpr float PARALLAX = 0.7f;

    const script::AttribPtr<float> m_opacity;            // of the clouds
    const script::AttribPtr<math::Vec4> m_skyColor;      // at the upper edge
    const script::AttribPtr<math::Vec4> m_horizonColor;  // at the lower edge

  private:
    void FindTextures();
    void CreateClouds();
    void WrapClouds(math::Vec2 center);
    // Some clouds come into a view that has just been fitted to a scene, if it is the first or shows none
    // that one would notice.
    void BringClouds(const math::BoundingBox2f& view);
    void SendClouds(const math::BoundingBox2f& view);
    void PlaceCloud(size_t index, const math::BoundingBox2f& view, float x);
    bool IsViewOfNewScene();
    void DrawSky();
    void DrawClouds();
    bool CollectClouds(const math::BoundingBox2f& view);  // false if none would be noticed

    const View& m_view;
    const script::AttribPtr<bool> m_drawClouds;              // of App
    std::vector<rendering::TextureMentorPtr> m_skyTextures;  // at least one
    std::vector<rendering::VertexBatch> m_batches;           // of this frame's clouds, one for each texture
    std::vector<Cloud> m_clouds;                             // none until the first Update
    float m_wrapWidth = 0;                                   // world units
    float m_wrapHeight = 0;
    uint32_t m_sceneFits = 0;  // of the view, when it was last looked at
    bool m_hasBroughtClouds = false;
};

}  // namespace app
