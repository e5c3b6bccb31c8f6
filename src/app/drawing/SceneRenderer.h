#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "app/Fwd.h"
#include "app/drawing/DrawSettings.h"
#include "rendering/Texture.h"
#include "util/SharedPtr.h"

namespace app {

class SelectionPainter;
class WaterPainter;
struct WaterView;

// Draws a scene as a view shows it. The order of the passes is the design: the water's field comes before the
// picture proper, for the frame buffer may be its scratch paper.
//
// Making it touches no GL; drawing does, and makes what it needs.
class SceneRenderer {
  public:
    // The settings are declared as attributes of `owner`.
    SceneRenderer(const Scene& scene, const View& view, script::Reflected& owner);
    ~SceneRenderer();

    void Update(float dt);  // seconds
    // In GUI coordinates. `drawOver` draws in world coordinates, over the scene.
    void Draw(const std::function<void()>& drawOver);

    const DrawSettings& GetSettings() const { return m_settings; }
    const BackgroundPtr& GetBackground() const { return m_background; }

  private:
    WaterView GetWaterView() const;
    bool HasWaterField() const;
    void DrawFade();
    void CaptureFade();
    void DrawWater();
    void DrawEntities();
    void DrawEntity(Entity& entity);
    void DrawSelection();
    float GetLineGrowth() const;
    void DrawDebugViews();

    const Scene& m_scene;
    const View& m_view;
    const DrawSettings m_settings;
    const BackgroundPtr m_background;
    const util::SharedPtr<WaterPainter> m_waterPainter;
    const std::unique_ptr<SelectionPainter> m_selectionPainter;
    rendering::TextureMentorPtr m_fadeTexture;  // the last frame; null until fading is first asked for
    uint32_t m_fadeGeneration = 0;              // of the context that m_fadeTexture has a frame of
};

}  // namespace app
